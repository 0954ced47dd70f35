// MIT License.
#include "tests/editor/screen/host_window.h"

#include <windows.h>

#include <initializer_list>

namespace screen_tests {

namespace {

constexpr int left = 200;
constexpr int top = 300;

// The middle of a pixel where the screen's length is 65536.
LONG scaled(int pixel, int screen) {
  return (pixel * 65536 + 32768) / screen;
}

void send_buttons(std::initializer_list<DWORD> events) {
  for (const DWORD event : events) {
    INPUT input = {};
    input.type = INPUT_MOUSE;
    input.mi.dwFlags = event;
    SendInput(1, &input, sizeof input);
  }
}

void type(WORD key) {
  for (const DWORD flags : {0UL, static_cast<unsigned long>(KEYEVENTF_KEYUP)}) {
    INPUT input = {};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = key;
    input.ki.dwFlags = flags;
    SendInput(1, &input, sizeof input);
  }
}

}  // namespace

struct host_window::system {
  HWND window = CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, left, top, 400, 200,
                                nullptr, nullptr, nullptr, nullptr);
};

host_window::host_window() : system_(std::make_unique<system>()) {
  SetForegroundWindow(system_->window);
  move(-100, -100);
}

host_window::~host_window() {
  release();
  DestroyWindow(system_->window);
  handle_events();
}

void* host_window::handle() const {
  return system_->window;
}

bool host_window::has_child() const {
  return GetWindow(system_->window, GW_CHILD) != nullptr;
}

std::vector<uint32_t> host_window::row_of_child(int y, int left_end, int right_end) const {
  const HWND child = GetWindow(system_->window, GW_CHILD);
  const HDC context = GetDC(child);
  std::vector<uint32_t> pixels;
  for (int x = left_end; x < right_end; ++x) pixels.push_back(GetPixel(context, x, y));
  ReleaseDC(child, context);
  return pixels;
}

void host_window::handle_events() const {
  MSG message;
  while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
}

void host_window::move(int x, int y) const {
  INPUT input = {};
  input.type = INPUT_MOUSE;
  input.mi.dx = scaled(left + x, GetSystemMetrics(SM_CXSCREEN));
  input.mi.dy = scaled(top + y, GetSystemMetrics(SM_CYSCREEN));
  input.mi.dwFlags = MOUSEEVENTF_MOVE | MOUSEEVENTF_ABSOLUTE;
  SendInput(1, &input, sizeof input);
}

void host_window::press() const {
  send_buttons({MOUSEEVENTF_LEFTDOWN});
  handle_events();  // the system sends what follows to the window that captures the mouse by then
}

void host_window::release() const {
  send_buttons({MOUSEEVENTF_LEFTUP});
}

void host_window::click(int x, int y) const {
  move(x, y);
  send_buttons({MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP});
}

void host_window::right_click(int x, int y) const {
  move(x, y);
  send_buttons({MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP});
}

void host_window::press_return() const {
  type(VK_RETURN);
}

bool host_window::choose_first(int x, int y, const std::function<void()>& idle) const {
  click(x, y);
  // Before the menu opens, as it has an event loop of its own. Its first row is a heading, which can't be chosen but is
  // where this system's menus go at first.
  for (const int key : {VK_HOME, VK_DOWN, VK_RETURN}) type(static_cast<WORD>(key));
  for (int calls = 0; calls < 10; ++calls) {
    handle_events();
    idle();
  }
  return true;
}

bool host_window::has_open_menu() const {
  return FindWindowW(L"#32768", nullptr) != nullptr;
}

}  // namespace screen_tests
