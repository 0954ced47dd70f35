// MIT License.
#include "tests/vstgui/x11/x11_host.h"

#include <X11/extensions/XTest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <stdexcept>
#include <thread>

#include "tests/words/x_server.h"

namespace x11_tests {

using namespace VSTGUI;

namespace {

std::string line(const char* name, const CPoint& where, const CButtonState& buttons) {
  char text[64];
  std::snprintf(text, sizeof text, "%s %g,%g %d", name, where.x, where.y, buttons());
  return text;
}

std::string line(const char* name, const VstKeyCode& key) {
  char text[64];
  std::snprintf(text, sizeof text, "%s %d %d %d", name, key.character, key.virt, key.modifier);
  return text;
}

}  // namespace

bool recorder::has(const std::string& line) const {
  return std::ranges::find(log, line) != log.end();
}

int recorder::count(const std::string& start) const {
  return static_cast<int>(std::ranges::count_if(log, [&](const std::string& line) { return line.starts_with(start); }));
}

void recorder::paint(platform::painter& target, const CRect& damaged) {
  char text[64];
  std::snprintf(text, sizeof text, "paint %g,%g,%g,%g", damaged.left, damaged.top, damaged.right, damaged.bottom);
  log.emplace_back(text);
  target.fill_rect(damaged, colour);
}

CMouseEventResult recorder::mouse_down(const CPoint& where, const CButtonState& buttons) {
  log.push_back(line("down", where, buttons));
  on_down();
  return down_result;
}

CMouseEventResult recorder::mouse_moved(const CPoint& where, const CButtonState& buttons) {
  log.push_back(line("moved", where, buttons));
  return kMouseEventHandled;
}

CMouseEventResult recorder::mouse_up(const CPoint& where, const CButtonState& buttons) {
  log.push_back(line("up", where, buttons));
  return kMouseEventHandled;
}

bool recorder::mouse_wheel(const CPoint& where, CMouseWheelAxis axis, float distance, const CButtonState& buttons) {
  log.push_back(line("wheel", where, buttons) + (axis == kMouseWheelAxisX ? " x " : " y ") +
                (distance > 0 ? "forward" : "back"));
  return true;
}

bool recorder::key_down(VstKeyCode& key) {
  log.push_back(line("key", key));
  return handles_keys;
}

bool recorder::key_up(VstKeyCode& key) {
  log.push_back(line("key up", key));
  return handles_keys;
}

host::host(int screen) {
  start_x_server();
  display = XOpenDisplay(nullptr);
  if (display == nullptr) throw std::runtime_error("no connection to Xvfb");
  window =
      XCreateSimpleWindow(display, RootWindow(display, screen), 200, 300, 400, 200, 0, 0, WhitePixel(display, screen));
  XSelectInput(display, window, StructureNotifyMask);
  XMapWindow(display, window);
  XSetInputFocus(display, PointerRoot, RevertToNone, CurrentTime);
  move(-100, -100);
  for (XEvent event = {}; event.type != MapNotify;) XNextEvent(display, &event);
}

host::~host() {
  release(1);
  XCloseDisplay(display);
}

std::unique_ptr<platform::window> host::open(recorder& frame, double scale) const {
  return platform::open_window(reinterpret_cast<void*>(window), CPoint(200, 100), scale, frame);
}

std::vector<Window> host::children(Window of) const {
  Window root = 0;
  Window parent = 0;
  Window* list = nullptr;
  unsigned count = 0;
  if (XQueryTree(display, of, &root, &parent, &list, &count) == 0) return {};
  std::vector<Window> found(list, list + count);
  if (list != nullptr) XFree(list);
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
  XSync(display, False);
  return found;
}

Window host::menu() const {
  return find_on_root([](const XWindowAttributes& candidate) { return candidate.override_redirect != 0; });
}

XWindowAttributes host::attributes(Window of) const {
  XWindowAttributes found = {};
  XGetWindowAttributes(display, of, &found);
  return found;
}

unsigned long host::pixel(Window of, int x, int y) const {
  XImage* const image = XGetImage(display, of, x, y, 1, 1, AllPlanes, ZPixmap);
  if (image == nullptr) return 0;
  const unsigned long found = XGetPixel(image, 0, 0);
  XDestroyImage(image);
  return found;
}

bool host::got_key(int type, KeySym key) const {
  XSync(display, False);
  XEvent event;
  while (XCheckTypedWindowEvent(display, window, type, &event) != 0)
    if (XLookupKeysym(&event.xkey, 0) == key) return true;
  return false;
}

void host::move(int x, int y) const {
  XTestFakeMotionEvent(display, XScreenNumberOfScreen(attributes(window).screen), 200 + x, 300 + y, 0);
  XSync(display, False);
}

void host::press(unsigned button) const {
  XTestFakeButtonEvent(display, button, True, 0);
  XSync(display, False);
}

void host::release(unsigned button) const {
  XTestFakeButtonEvent(display, button, False, 0);
  XSync(display, False);
}

void host::click(int x, int y, unsigned button) const {
  move(x, y);
  press(button);
  release(button);
}

void host::hold(KeySym key, bool down) const {
  XTestFakeKeyEvent(display, XKeysymToKeycode(display, key), down ? True : False, 0);
  XSync(display, False);
}

void host::type(KeySym key) const {
  hold(key, true);
  hold(key, false);
}

bool poll_until(platform::window& window, const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  for (;;) {
    window.poll_events();
    if (condition()) return true;
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

void poll_all(platform::window& window) {
  window.mouse_position();  // the answer comes after all events so far
  window.poll_events();
}

}  // namespace x11_tests
