// MIT License. A host's window, a user's hand and eye, and a frame that writes down what it hears.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vstgui/platform.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace x11_tests {

using namespace VSTGUI;

// Notes each event as "down 10,20 2; ": a name, a point, and the mask of buttons.
class recorder : public platform::window_events {
 public:
  std::string log;
  bool handles_keys = false;
  CColor colour = kRedCColor;  // of all that is painted
  std::function<void()> on_down = [] {};

  bool has(const char* event) const { return log.find(event) != std::string::npos; }
  void note(const char* format, ...) __attribute__((format(printf, 2, 3)));

  void paint(platform::painter& target, const CRect& damaged) override;
  CMouseEventResult mouse_down(const CPoint& where, const CButtonState& buttons) override {
    return on_down(), noted("down", where, buttons);
  }
  CMouseEventResult mouse_moved(const CPoint& where, const CButtonState& buttons) override {
    return noted("moved", where, buttons);
  }
  CMouseEventResult mouse_up(const CPoint& where, const CButtonState& buttons) override {
    return noted("up", where, buttons);
  }
  void mouse_left() override { note("left"); }
  void mouse_cancelled() override { note("cancelled"); }
  bool mouse_wheel(const CPoint& where, CMouseWheelAxis axis, float distance, const CButtonState&) override {
    return note("wheel %g,%g %c%+g", where.x, where.y, "xy"[axis], static_cast<double>(distance)), true;
  }
  bool key_down(VstKeyCode& key) override {
    return note("key %d %d %d", key.character, key.virt, key.modifier), handles_keys;
  }
  bool key_up(VstKeyCode& key) override { return note("key up %d", key.character), handles_keys; }
  void activated(bool active) override { note(active ? "active" : "inactive"); }

 private:
  CMouseEventResult noted(const char* name, const CPoint& where, const CButtonState& buttons) {
    return note("%s %g,%g %d", name, where.x, where.y, buttons()), kMouseEventHandled;
  }
};

// A top-level window at 200,300 on a screen of the tests' server, of 400 x 200 pixels, visible.
class host {
 public:
  explicit host(int screen = 0);
  host(const host&) = delete;
  host& operator=(const host&) = delete;
  ~host();

  Display* display;
  Window window;

  std::unique_ptr<platform::window> open(recorder& frame) const;  // 200 x 100
  std::vector<Window> children(Window of) const;
  Window child() const;  // the only one of `window`
  // The topmost other window on the screen that matches; 0 if there is none.
  Window find_on_root(const std::function<bool(const XWindowAttributes&)>& matches) const;
  Window menu() const;
  bool has_focus(Window of) const;
  XWindowAttributes attributes(Window of) const;
  unsigned long pixel(Window of, int x, int y) const;
  // Whether the host got this event of a key for its window; those before are dropped.
  bool got_key(int type, KeySym key) const;
  void send(Window to, const char* type, std::initializer_list<long> data) const;
  void sync(int = 0) const { XSync(display, False); }

  // The user's hand, in the host's coordinates.
  void move(int x, int y) const { sync(XTestFakeMotionEvent(display, -1, 200 + x, 300 + y, 0)); }
  void press(unsigned button = 1) const { sync(XTestFakeButtonEvent(display, button, True, 0)); }
  void release(unsigned button = 1) const { sync(XTestFakeButtonEvent(display, button, False, 0)); }
  void click(int x, int y, unsigned button = 1) const;
  void hold(KeySym key, bool down) const;
  void type(KeySym key) const;
};

// Tries for ten seconds.
bool wait_until(const std::function<bool()>& condition);

// Handles all that the server has for the window by now, and what that brings about, such as a change of focus.
void poll(platform::window& window);

}  // namespace x11_tests
