// MIT License.
#include <windows.h>

#include "hosts/check/parent_window.h"

namespace {

constexpr const wchar_t* class_name = L"KesrelPluginCheck";

class win32_parent final : public parent_window {
 public:
  explicit win32_parent(HWND window) : window_(window) { ShowWindow(window, SW_SHOWNOACTIVATE); }
  win32_parent(const win32_parent&) = delete;
  win32_parent& operator=(const win32_parent&) = delete;
  ~win32_parent() override { DestroyWindow(window_); }

  void* handle() const override { return window_; }

  void resize(const view_size& size) override {
    SetWindowPos(window_, nullptr, 0, 0, size.width, size.height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }

  int children() const override {
    int count = 0;
    for (HWND child = GetWindow(window_, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) ++count;
    return count;
  }

  view_size child_size() const override {
    RECT area = {};
    HWND const child = GetWindow(window_, GW_CHILD);
    if (child == nullptr || GetClientRect(child, &area) == 0) return {};
    return {static_cast<int>(area.right), static_cast<int>(area.bottom)};
  }

  void handle_events() override {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
  }

  std::string error() const override { return {}; }

 private:
  HWND window_;
};

}  // namespace

std::unique_ptr<parent_window> open_parent_window() {
  WNDCLASSW description = {};
  description.lpfnWndProc = DefWindowProcW;
  description.hInstance = GetModuleHandleW(nullptr);
  description.lpszClassName = class_name;
  RegisterClassW(&description);  // fails harmlessly from the second time on
  HWND const window = CreateWindowExW(0, class_name, class_name, WS_POPUP | WS_CLIPCHILDREN, 0, 0, 200, 100, nullptr,
                                      nullptr, description.hInstance, nullptr);
  if (window == nullptr) return nullptr;
  return std::make_unique<win32_parent>(window);
}
