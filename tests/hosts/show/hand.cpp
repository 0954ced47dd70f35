// MIT License. The user of kesrel-show's window: mouse, keyboard and the frame's button to close it.
#include "tests/hosts/show/hand.h"

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>

#include <chrono>
#include <stdexcept>
#include <thread>

hand::hand() : display_(XOpenDisplay(nullptr)) {
  if (display_ == nullptr) throw std::runtime_error("no display");
}

hand::~hand() {
  XCloseDisplay(display_);
}

unsigned long hand::visible_window() const {
  Window parents[2];
  Window* children = nullptr;
  unsigned count = 0;
  XQueryTree(display_, DefaultRootWindow(display_), &parents[0], &parents[1], &children, &count);
  Window found = 0;
  for (unsigned i = 0; i < count; ++i) {
    char* title = nullptr;
    XWindowAttributes attributes;
    if (XFetchName(display_, children[i], &title) != 0 && std::string(title) == "Kesrel Vocoder 4 ME" &&
        XGetWindowAttributes(display_, children[i], &attributes) != 0 && attributes.map_state == IsViewable) {
      found = children[i];
    }
    XFree(title);
  }
  XFree(children);
  return found;
}

void hand::set_dots_per_inch(const std::string& number) {
  const std::string resources = "Xft.antialias:\t1\nXft.dpi:\t" + number + "\n";
  XChangeProperty(display_, DefaultRootWindow(display_), XA_RESOURCE_MANAGER, XA_STRING, 8, PropModeReplace,
                  reinterpret_cast<const unsigned char*>(resources.data()), static_cast<int>(resources.size()));
  XSync(display_, False);
}

void hand::find_window() {
  for (int i = 0; i < 5000; ++i) {
    window_ = visible_window();
    if (window_ != 0) return;
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
  }
  throw std::runtime_error("the window doesn't appear");
}

void hand::click() {
  XTestFakeMotionEvent(display_, -1, 20, 20, 0);
  XTestFakeButtonEvent(display_, 1, True, 0);
  XTestFakeButtonEvent(display_, 1, False, 0);
  XSync(display_, False);
}

void hand::type(char key) {
  const KeyCode code = XKeysymToKeycode(display_, static_cast<KeySym>(key));
  XTestFakeKeyEvent(display_, code, True, 0);
  XTestFakeKeyEvent(display_, code, False, 0);
  XSync(display_, False);
}

void hand::close_window() {
  XEvent event{};
  event.xclient.type = ClientMessage;
  event.xclient.window = window_;
  event.xclient.message_type = XInternAtom(display_, "WM_PROTOCOLS", False);
  event.xclient.format = 32;
  event.xclient.data.l[0] = static_cast<long>(XInternAtom(display_, "WM_DELETE_WINDOW", False));
  XSendEvent(display_, window_, False, NoEventMask, &event);
  XSync(display_, False);
}

std::pair<std::pair<int, int>, std::pair<int, int>> hand::size_limits() {
  XSizeHints hints{};
  long supplied = 0;
  XGetWMNormalHints(display_, window_, &hints, &supplied);
  return {{hints.min_width, hints.min_height}, {hints.max_width, hints.max_height}};
}
