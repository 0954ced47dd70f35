// MIT License.
#include "doors/dpf/top_window.h"

#include <X11/Xlib.h>
#include <X11/Xresource.h>
#include <X11/Xutil.h>

#include <cstdlib>

namespace {

struct display_closer {
  void operator()(Display* display) const { XCloseDisplay(display); }
};
using display_handle = std::unique_ptr<Display, display_closer>;

Window newest_child(Display* display, Window parent) {
  Window root = None;
  Window above = None;
  Window* children = nullptr;
  unsigned count = 0;
  if (XQueryTree(display, parent, &root, &above, &children, &count) == 0) return None;
  const Window newest = count > 0 ? children[count - 1] : None;
  if (children != nullptr) XFree(children);
  return newest;
}

class x11_window : public top_window {
 public:
  x11_window(display_handle display, const std::string& title, const window_extent& extent, uintptr_t owner)
      : display_(std::move(display)) {
    Display* const server = display_.get();
    const int screen = DefaultScreen(server);
    window_ = XCreateSimpleWindow(server, RootWindow(server, screen), 0, 0, extent.width, extent.height, 0,
                                  BlackPixel(server, screen), BlackPixel(server, screen));
    set_names(title);
    set_hints(extent);
    if (owner != 0) XSetTransientForHint(server, window_, static_cast<Window>(owner));
    XSelectInput(server, window_, FocusChangeMask | StructureNotifyMask);
    // The editor has a connection of its own: the window must exist before its id is passed on.
    XSync(server, False);
  }
  ~x11_window() override { XDestroyWindow(display_.get(), window_); }

  uintptr_t handle() const override { return window_; }

  void show() override {
    XMapRaised(display_.get(), window_);
    XFlush(display_.get());
  }

  void raise() override {
    XRaiseWindow(display_.get(), window_);
    XFlush(display_.get());
  }

  bool handle_events() override {
    while (XPending(display_.get()) > 0) {
      XEvent event;
      XNextEvent(display_.get(), &event);
      if (event.type == ClientMessage) {
        is_close_requested_ |= static_cast<Atom>(event.xclient.data.l[0]) == delete_window_;
      } else if (event.type == FocusIn && event.xfocus.detail != NotifyPointer) {
        pass_focus();
      }
    }
    return is_close_requested_;
  }

 private:
  // Desktops find the program's icon by the class, which its desktop entry names.
  void set_names(const std::string& title) {
    Display* const server = display_.get();
    const Atom utf8 = XInternAtom(server, "UTF8_STRING", False);
    const auto* const bytes = reinterpret_cast<const unsigned char*>(title.data());
    const int length = static_cast<int>(title.size());
    XStoreName(server, window_, title.c_str());
    XSetIconName(server, window_, title.c_str());
    XChangeProperty(server, window_, XInternAtom(server, "_NET_WM_NAME", False), utf8, 8, PropModeReplace, bytes,
                    length);
    std::string instance = "kesrel-vocoder";
    std::string name_of_class = "kesrel-vocoder";
    XClassHint class_hint{instance.data(), name_of_class.data()};
    XSetClassHint(server, window_, &class_hint);
  }

  void set_hints(const window_extent& extent) {
    Display* const server = display_.get();
    XSizeHints size{};
    size.flags = PSize | PMinSize | PMaxSize;
    size.width = size.min_width = size.max_width = static_cast<int>(extent.width);
    size.height = size.min_height = size.max_height = static_cast<int>(extent.height);
    XSetWMNormalHints(server, window_, &size);
    XWMHints hints{};
    hints.flags = InputHint;
    hints.input = True;
    XSetWMHints(server, window_, &hints);
    XSetWMProtocols(server, window_, &delete_window_, 1);
  }

  // Keys belong to the editor, whose window is the only one inside.
  void pass_focus() {
    const Window editor = newest_child(display_.get(), window_);
    XWindowAttributes attributes{};
    if (editor == None || XGetWindowAttributes(display_.get(), editor, &attributes) == 0) return;
    if (attributes.map_state != IsViewable) return;
    XSetInputFocus(display_.get(), editor, RevertToParent, CurrentTime);
    XFlush(display_.get());
  }

  const display_handle display_;
  Atom delete_window_ = XInternAtom(display_.get(), "WM_DELETE_WINDOW", False);
  Window window_ = None;
  bool is_close_requested_ = false;
};

}  // namespace

std::unique_ptr<top_window> make_top_window(const std::string& title, const window_extent& extent, uintptr_t owner) {
  display_handle display(XOpenDisplay(nullptr));
  if (display == nullptr) return nullptr;
  return std::make_unique<x11_window>(std::move(display), title, extent, owner);
}

double display_scale() {
  const display_handle display(XOpenDisplay(nullptr));
  const char* const resources = display == nullptr ? nullptr : XResourceManagerString(display.get());
  if (resources == nullptr) return 1;
  XrmInitialize();
  const XrmDatabase database = XrmGetStringDatabase(resources);
  if (database == nullptr) return 1;
  char* type = nullptr;
  XrmValue value{};
  const bool is_set = XrmGetResource(database, "Xft.dpi", "Xft.Dpi", &type, &value) != 0 && value.addr != nullptr;
  const double dots_per_inch = is_set ? std::strtod(value.addr, nullptr) : 0;
  XrmDestroyDatabase(database);
  return dots_per_inch > 0 ? dots_per_inch / 96 : 1;
}

uintptr_t newest_child(uintptr_t parent) {
  const display_handle display(XOpenDisplay(nullptr));
  return display == nullptr ? 0 : newest_child(display.get(), static_cast<Window>(parent));
}
