// MIT License. The user of kesrel-show's window: mouse, keyboard and the frame's button to close it.
#include "tests/hosts/show/hand.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <chrono>
#include <stdexcept>
#include <thread>

struct hand::client {
  Display* display = XOpenDisplay(nullptr);
  Window window = None;

  // None while there is no such window that can be seen.
  Window visible_window() const {
    Window root = None;
    Window parent = None;
    Window* children = nullptr;
    unsigned count = 0;
    XQueryTree(display, DefaultRootWindow(display), &root, &parent, &children, &count);
    Window found = None;
    for (unsigned i = 0; i < count; ++i) {
      char* title = nullptr;
      XFetchName(display, children[i], &title);
      XWindowAttributes attributes;
      const bool visible =
          XGetWindowAttributes(display, children[i], &attributes) != 0 && attributes.map_state == IsViewable;
      if (visible && title != nullptr && std::string(title) == "Kesrel Vocoder 4 ME") found = children[i];
      if (title != nullptr) XFree(title);
    }
    if (children != nullptr) XFree(children);
    return found;
  }
};

hand::hand() : client_(std::make_unique<client>()) {
  if (client_->display == nullptr) throw std::runtime_error("no display");
}

hand::~hand() {
  XCloseDisplay(client_->display);
}

void hand::set_dots_per_inch(const std::string& number) {
  const std::string resources = "Xft.antialias:\t1\nXft.dpi:\t" + number + "\n";
  XChangeProperty(client_->display, DefaultRootWindow(client_->display), XA_RESOURCE_MANAGER, XA_STRING, 8,
                  PropModeReplace, reinterpret_cast<const unsigned char*>(resources.data()),
                  static_cast<int>(resources.size()));
  XSync(client_->display, False);
}

void hand::find_window() {
  for (int i = 0; i < 5000; ++i) {
    client_->window = client_->visible_window();
    if (client_->window != None) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  throw std::runtime_error("the window doesn't appear");
}

void hand::click() {
  XTestFakeMotionEvent(client_->display, -1, 20, 20, 0);
  XTestFakeButtonEvent(client_->display, 1, True, 0);
  XTestFakeButtonEvent(client_->display, 1, False, 0);
  XSync(client_->display, False);
}

void hand::type(char key) {
  const KeyCode code = XKeysymToKeycode(client_->display, static_cast<KeySym>(key));
  XTestFakeKeyEvent(client_->display, code, True, 0);
  XTestFakeKeyEvent(client_->display, code, False, 0);
  XSync(client_->display, False);
}

void hand::close_window() {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = client_->window;
  event.xclient.message_type = XInternAtom(client_->display, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(client_->display, "WM_DELETE_WINDOW", False));
  XSendEvent(client_->display, client_->window, False, NoEventMask, &event);
  XSync(client_->display, False);
}

std::pair<std::pair<int, int>, std::pair<int, int>> hand::size_limits() {
  XSizeHints hints{};
  long supplied = 0;
  XGetWMNormalHints(client_->display, client_->window, &hints, &supplied);
  return {{hints.min_width, hints.min_height}, {hints.max_width, hints.max_height}};
}
