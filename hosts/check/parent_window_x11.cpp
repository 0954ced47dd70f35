// MIT License.
#include <X11/Xlib.h>

#include "hosts/check/parent_window.h"

namespace {

std::string last_error;

// Without it Xlib would end the process at a wrong request.
int note_error(Display* display, XErrorEvent* error) {
  char text[256];
  XGetErrorText(display, error->error_code, text, sizeof text);
  last_error = std::string(text) + ", request " + std::to_string(error->request_code);
  return 0;
}

class x11_parent final : public parent_window {
 public:
  explicit x11_parent(Display* display) : display_(display) {
    last_error.clear();
    XSetErrorHandler(note_error);
    window_ = XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 200, 100, 0, 0, 0);
    XMapRaised(display, window_);
    // A plug-in has a connection of its own: the window must exist before its id is passed on.
    XSync(display, False);
  }
  x11_parent(const x11_parent&) = delete;
  x11_parent& operator=(const x11_parent&) = delete;
  ~x11_parent() override {
    XDestroyWindow(display_, window_);
    XCloseDisplay(display_);
  }

  void* handle() const override { return reinterpret_cast<void*>(window_); }  // NOLINT(performance-no-int-to-ptr)

  void resize(const view_size& size) override {
    XResizeWindow(display_, window_, static_cast<unsigned>(size.width), static_cast<unsigned>(size.height));
    XSync(display_, False);
  }

  int children() const override { return static_cast<int>(child_windows().size()); }

  view_size child_size() const override {
    const std::vector<Window> windows = child_windows();
    XWindowAttributes attributes{};
    if (windows.empty() || XGetWindowAttributes(display_, windows[0], &attributes) == 0) return {};
    return {attributes.width, attributes.height};
  }

  void handle_events() override {
    while (XPending(display_) > 0) {
      XEvent event;
      XNextEvent(display_, &event);
    }
  }

  std::string error() const override { return last_error; }

 private:
  std::vector<Window> child_windows() const {
    XSync(display_, False);
    Window root = None;
    Window parent = None;
    Window* windows = nullptr;
    unsigned count = 0;
    if (XQueryTree(display_, window_, &root, &parent, &windows, &count) == 0) return {};
    std::vector<Window> result(windows, windows + count);
    if (windows != nullptr) XFree(windows);
    return result;
  }

  Display* display_;
  Window window_;
};

}  // namespace

std::unique_ptr<parent_window> open_parent_window() {
  Display* const display = XOpenDisplay(nullptr);
  if (display == nullptr) return nullptr;
  return std::make_unique<x11_parent>(display);
}
