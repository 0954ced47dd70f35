// MIT License.
#include "tests/editor/screen/host_window.h"

#include "tests/vstgui/x11/x11_host.h"

namespace screen_tests {

struct host_window::system {
  x11_tests::host host;
};

host_window::host_window() : system_(std::make_unique<system>()) {}

host_window::~host_window() = default;

void* host_window::handle() const {
  return reinterpret_cast<void*>(system_->host.window);
}

bool host_window::has_child() const {
  return !system_->host.children(system_->host.window).empty();
}

std::vector<uint32_t> host_window::row_of_child(int y, int left, int right) const {
  const Window child = system_->host.child();
  std::vector<uint32_t> pixels;
  for (int x = left; x < right; ++x) pixels.push_back(static_cast<uint32_t>(system_->host.pixel(child, x, y)));
  return pixels;
}

void host_window::handle_events() const {}

void host_window::move(int x, int y) const {
  system_->host.move(x, y);
}

void host_window::press() const {
  system_->host.press();
}

void host_window::release() const {
  system_->host.release();
}

void host_window::click(int x, int y) const {
  system_->host.click(x, y);
}

void host_window::right_click(int x, int y) const {
  system_->host.click(x, y, 3);
}

void host_window::press_return() const {
  system_->host.type(XK_Return);
}

bool host_window::choose_first(int x, int y, const std::function<void()>& idle) const {
  click(x, y);
  const bool opened = x11_tests::wait_until([&] { return idle(), has_open_menu(); });
  if (opened) {
    for (const auto key : {XK_Home, XK_Return}) system_->host.type(static_cast<KeySym>(key));
  }
  return opened;
}

bool host_window::has_open_menu() const {
  return system_->host.menu() != 0;
}

}  // namespace screen_tests
