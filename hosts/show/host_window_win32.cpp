// MIT License. The top-level window that holds the editor's, on Windows.
#include <windows.h>

#include "hosts/effect/text.h"
#include "hosts/show/host_window.h"
#include "hosts/show/key_codes_win32.h"

namespace {

constexpr const wchar_t* class_name = L"KesrelShow";
constexpr DWORD style = WS_OVERLAPPED | WS_CAPTION | WS_SYSMENU | WS_MINIMIZEBOX;

// The text's letters; titles are ASCII.
std::wstring wide(const std::string& text) {
  return {text.begin(), text.end()};
}

window_size outer_size(const window_size& content) {
  RECT area = {0, 0, content.width, content.height};
  AdjustWindowRect(&area, style, FALSE);
  return {area.right - area.left, area.bottom - area.top};
}

}  // namespace

struct host_window::connection {
  HWND window = nullptr;
  window_size size{};
  bool is_close_requested = false;
  std::function<void(const VstKeyCode&, bool)>* pass_key = nullptr;

  LRESULT handle(UINT message, WPARAM key, LPARAM details) {
    switch (message) {
      case WM_CLOSE:
        is_close_requested = true;
        return 0;
      case WM_KEYDOWN:
      case WM_KEYUP:
        // With the focus elsewhere it is a key that the editor has seen and gives back.
        if (GetFocus() == window && *pass_key) (*pass_key)(key_code_of(key, details), message == WM_KEYDOWN);
        return 0;
      default:
        return DefWindowProcW(window, message, key, details);
    }
  }

  static LRESULT CALLBACK handle_message(HWND window, UINT message, WPARAM key, LPARAM details) {
    if (message == WM_NCCREATE) {
      auto* const created = static_cast<connection*>(reinterpret_cast<CREATESTRUCTW*>(details)->lpCreateParams);
      created->window = window;
      SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(created));
    }
    auto* const own = reinterpret_cast<connection*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    return own == nullptr ? DefWindowProcW(window, message, key, details) : own->handle(message, key, details);
  }
};

host_window::host_window(bool /*verbose*/) : connection_(std::make_unique<connection>()) {
  connection_->pass_key = &on_key;
  WNDCLASSW description = {};
  description.lpfnWndProc = connection::handle_message;
  description.hInstance = GetModuleHandleW(nullptr);
  description.hCursor = LoadCursor(nullptr, IDC_ARROW);
  description.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
  description.lpszClassName = class_name;
  RegisterClassW(&description);
}

host_window::~host_window() {
  destroy();
  UnregisterClassW(class_name, GetModuleHandleW(nullptr));
}

// The system scales the windows of a program that doesn't do so itself, and answers 96 dots per inch.
double host_window::display_scale() const {
  const HDC screen = GetDC(nullptr);
  const int dots_per_inch = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return dots_per_inch > 0 ? dots_per_inch / 96.0 : 1.0;
}

void host_window::create(const std::string& title, const window_size& size) {
  connection_->size = size;
  const window_size outer = outer_size(size);
  CreateWindowExW(0, class_name, wide(title).c_str(), style, CW_USEDEFAULT, CW_USEDEFAULT, outer.width, outer.height,
                  nullptr, nullptr, GetModuleHandleW(nullptr), connection_.get());
  if (connection_->window == nullptr) throw failure("no display: a window cannot be opened");
}

void host_window::show() {
  ShowWindow(connection_->window, SW_SHOWNORMAL);
  SetForegroundWindow(connection_->window);
}

void host_window::resize(const window_size& size) {
  if (connection_->window == nullptr) return;
  connection_->size = size;
  const window_size outer = outer_size(size);
  SetWindowPos(connection_->window, nullptr, 0, 0, outer.width, outer.height,
               SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void host_window::destroy() {
  if (connection_->window == nullptr) return;
  DestroyWindow(connection_->window);
  connection_->window = nullptr;
}

void* host_window::handle() const {
  return connection_->window;
}

void host_window::handle_events(std::chrono::steady_clock::time_point until) {
  using namespace std::chrono;
  for (;;) {
    MSG message = {};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
      TranslateMessage(&message);
      DispatchMessageW(&message);
    }
    if (connection_->is_close_requested) return;
    const auto left = ceil<milliseconds>(until - steady_clock::now());
    if (left.count() <= 0) return;
    MsgWaitForMultipleObjects(0, nullptr, FALSE, static_cast<DWORD>(left.count()), QS_ALLINPUT);
  }
}

bool host_window::is_close_requested() const {
  return connection_->is_close_requested;
}

picture host_window::content() const {
  const window_size& size = connection_->size;
  BITMAPINFO format = {};
  format.bmiHeader.biSize = sizeof format.bmiHeader;
  format.bmiHeader.biWidth = size.width;
  format.bmiHeader.biHeight = -size.height;  // rows from the top
  format.bmiHeader.biPlanes = 1;
  format.bmiHeader.biBitCount = 32;
  const HDC source = GetDC(connection_->window);
  const HDC target = CreateCompatibleDC(source);
  void* pixels = nullptr;
  const HBITMAP bitmap = CreateDIBSection(source, &format, DIB_RGB_COLORS, &pixels, nullptr, 0);
  picture result{size.width, size.height};
  if (bitmap != nullptr) {
    const HGDIOBJ former = SelectObject(target, bitmap);
    if (BitBlt(target, 0, 0, size.width, size.height, source, 0, 0, SRCCOPY)) {
      GdiFlush();
      const auto* const first = static_cast<const uint32_t*>(pixels);
      result.pixels.assign(first, first + static_cast<std::ptrdiff_t>(size.width) * size.height);
    }
    SelectObject(target, former);
    DeleteObject(bitmap);
  }
  DeleteDC(target);
  ReleaseDC(connection_->window, source);
  if (result.pixels.empty()) throw failure("the window's picture cannot be read");
  for (uint32_t& pixel : result.pixels) pixel &= 0xFFFFFF;
  return result;
}
