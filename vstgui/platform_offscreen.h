// MIT License. Windows in memory, for tests: what is on a screen that nobody sees, and a user's hand in it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "vstgui/platform.h"

namespace VSTGUI::platform::offscreen {

struct window_state;

// One window, from the user's side. A copy is the same window. What it does to a window that has closed has no effect;
// events may close it.
class shown_window {
 public:
  explicit shown_window(std::shared_ptr<window_state> state) : state_(std::move(state)) {}

  bool is_open() const;
  CPoint size() const;
  double scale() const;
  CCursorType cursor() const;

  // Mouse, in the frame's coordinates. `buttons` is the button that goes down or up, and modifiers; other buttons that
  // are held are added. Without a capture the window gets nothing from outside, but learns that the pointer has left.
  CMouseEventResult press(const CPoint& where, int32_t buttons = kLButton);
  void move(const CPoint& where, int32_t modifiers = 0);
  void release(const CPoint& where, int32_t buttons = kLButton);
  void click(const CPoint& where, int32_t buttons = kLButton);
  // The system takes the mouse away from a window that has captured it.
  void take_capture();
  bool wheel(const CPoint& where, float distance, CMouseWheelAxis axis = kMouseWheelAxisY);

  //   virt       VstVirtualKey
  //   modifier   mask of VstModifierKey
  bool key_down(int32_t virt, int32_t modifier = 0);
  bool key_up(int32_t virt, int32_t modifier = 0);
  void activate(bool active);

  // Areas that wait for a paint.
  const std::vector<CRect>& invalid_areas() const;
  // Paints them. The window's poll_events does so, too.
  void paint();
  // Pixels of the last paint, alpha, red, green and blue from the highest byte down, row by row.
  std::vector<uint32_t> pixels(const CRect& area) const;

  // The menu that is open; null for none.
  const menu_request* menu() const;
  // Chooses an item, or dismisses the menu by -1.
  void answer_menu(int32_t item);

 private:
  std::shared_ptr<window_state> state_;
};

// Those that are open, in the order of opening.
std::vector<shown_window> windows();

struct message {
  std::string title;
  std::string text;
};

// What tests set up, and what was shown besides windows.
struct desktop_state {
  bool has_display = true;  // else no window opens
  // Answers menus before open_menu returns; without it they stay open.
  std::function<int32_t(const menu_request&)> menu_user;
  std::vector<message> messages;
  uint32_t ticks_ms = 0;
};
desktop_state& desktop();

}  // namespace VSTGUI::platform::offscreen
