// MIT License.
#include "tests/vstgui/x11/x11_host.h"

#include <algorithm>
#include <chrono>
#include <cstdarg>
#include <cstdio>
#include <thread>

#include "tests/words/x_server.h"

namespace x11_tests {

void recorder::note(const char* format, ...) {
  char text[80];
  va_list values;
  va_start(values, format);
  std::vsnprintf(text, sizeof text, format, values);
  va_end(values);
  log += std::string(text) + "; ";
}

void recorder::paint(platform::painter& target, const CRect& damaged) {
  note("paint %g,%g,%g,%g", damaged.left, damaged.top, damaged.right, damaged.bottom);
  target.fill_rect(damaged, colour);
}

host::host(int screen) {
  start_x_server();
  display = XOpenDisplay(nullptr);
  window = XCreateSimpleWindow(display, RootWindow(display, screen), 200, 300, 400, 200, 0, 0, 0);
  XSelectInput(display, window, StructureNotifyMask);
  XMapWindow(display, window);
  XSetInputFocus(display, PointerRoot, RevertToNone, CurrentTime);
  move(-100, -100);
}

host::~host() {
  release();
  XCloseDisplay(display);
}

std::unique_ptr<platform::window> host::open(recorder& frame) const {
  return platform::open_window(reinterpret_cast<void*>(window), CPoint(200, 100), 1, frame);
}

std::vector<Window> host::children(Window of) const {
  Window root = 0;
  Window parent = 0;
  Window* list = nullptr;
  unsigned count = 0;
  XQueryTree(display, of, &root, &parent, &list, &count);
  std::vector<Window> found(list, list + count);
  XFree(list);
  return found;
}

Window host::child() const {
  const std::vector<Window> found = children(window);
  return found.size() == 1 ? found[0] : 0;
}

Window host::find_on_root(const std::function<bool(const XWindowAttributes&)>& matches) const {
  Window found = 0;
  XGrabServer(display);  // lest a window disappear before it is looked at
  for (const Window candidate : children(DefaultRootWindow(display)))
    if (candidate != window && matches(attributes(candidate))) found = candidate;
  XUngrabServer(display);
  sync();
  return found;
}

Window host::menu() const {
  return find_on_root([](const XWindowAttributes& candidate) { return candidate.override_redirect != 0; });
}

bool host::has_focus(Window of) const {
  Window holder = 0;
  int revert_to = 0;
  return XGetInputFocus(display, &holder, &revert_to) != 0 && holder == of;
}

XWindowAttributes host::attributes(Window of) const {
  XWindowAttributes found = {};
  XGetWindowAttributes(display, of, &found);
  return found;
}

unsigned long host::pixel(Window of, int x, int y) const {
  XImage* const image = XGetImage(display, of, x, y, 1, 1, AllPlanes, ZPixmap);
  const unsigned long found = XGetPixel(image, 0, 0);
  XDestroyImage(image);
  return found;
}

bool host::got_key(int type, KeySym key) const {
  sync();
  XEvent event;
  while (XCheckTypedWindowEvent(display, window, type, &event) != 0)
    if (XLookupKeysym(&event.xkey, 0) == key) return true;
  return false;
}

void host::send(Window to, const char* type, std::initializer_list<long> data) const {
  XEvent event = {};
  event.xclient.type = ClientMessage;
  event.xclient.window = to;
  event.xclient.message_type = XInternAtom(display, type, False);
  event.xclient.format = 32;
  std::ranges::copy(data, event.xclient.data.l);
  sync(XSendEvent(display, to, False, NoEventMask, &event));
}

void host::click(int x, int y, unsigned button) const {
  move(x, y);
  press(button);
  release(button);
}

void host::hold(KeySym key, bool down) const {
  sync(XTestFakeKeyEvent(display, XKeysymToKeycode(display, key), down ? True : False, 0));
}

void host::type(KeySym key) const {
  for (const bool down : {true, false}) hold(key, down);
}

bool wait_until(const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

void poll(platform::window& window) {
  for (int i = 0; i < 2; ++i) {
    window.mouse_position();  // the answer comes after all events so far
    window.poll_events();
  }
}

}  // namespace x11_tests
