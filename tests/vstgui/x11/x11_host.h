// MIT License. A host's window, a user's hand and eye, and a frame that writes down what it is told.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vstgui/platform.h"

#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/keysym.h>

namespace x11_tests {

// Writes each event down as "down 10,20 2": name, point, and the mask of buttons.
class recorder : public VSTGUI::platform::window_events {
 public:
  std::vector<std::string> log;
  VSTGUI::CMouseEventResult down_result = VSTGUI::kMouseEventHandled;
  bool handles_keys = false;
  VSTGUI::CColor colour = VSTGUI::kRedCColor;  // of all that is painted
  std::function<void()> on_down = [] {};

  bool has(const std::string& line) const;
  int count(const std::string& start) const;

  void paint(VSTGUI::platform::painter& target, const VSTGUI::CRect& damaged) override;
  VSTGUI::CMouseEventResult mouse_down(const VSTGUI::CPoint& where, const VSTGUI::CButtonState& buttons) override;
  VSTGUI::CMouseEventResult mouse_moved(const VSTGUI::CPoint& where, const VSTGUI::CButtonState& buttons) override;
  VSTGUI::CMouseEventResult mouse_up(const VSTGUI::CPoint& where, const VSTGUI::CButtonState& buttons) override;
  void mouse_left() override { log.emplace_back("left"); }
  void mouse_cancelled() override { log.emplace_back("cancelled"); }
  bool mouse_wheel(const VSTGUI::CPoint& where, VSTGUI::CMouseWheelAxis axis, float distance,
                   const VSTGUI::CButtonState& buttons) override;
  bool key_down(VstKeyCode& key) override;
  bool key_up(VstKeyCode& key) override;
  void activated(bool active) override { log.emplace_back(active ? "active" : "inactive"); }
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

  std::unique_ptr<VSTGUI::platform::window> open(recorder& frame, double scale = 1) const;
  std::vector<Window> children(Window of) const;
  Window child() const;  // the only one
  // The topmost other window on the screen that matches, 0 if there is none; menus don't have a window manager's frame.
  Window find_on_root(const std::function<bool(const XWindowAttributes&)>& matches) const;
  Window menu() const;
  XWindowAttributes attributes(Window of) const;
  unsigned long pixel(Window of, int x, int y) const;
  bool got_key(int type, KeySym key) const;  // a key event of the host's own window; earlier ones are dropped

  // The user's hand, in the host's coordinates.
  void move(int x, int y) const;
  void press(unsigned button = 1) const;
  void release(unsigned button = 1) const;
  void click(int x, int y, unsigned button = 1) const;
  void type(KeySym key) const;
  void hold(KeySym key, bool down) const;
};

// Polls until the condition holds; false when it doesn't for ten seconds.
bool poll_until(VSTGUI::platform::window& window, const std::function<bool()>& condition);
// Handles all that the server has for the window by now.
void poll_all(VSTGUI::platform::window& window);

}  // namespace x11_tests
