// MIT License. A pop-up menu of the frame's window.
#pragma once

#include <memory>
#include <optional>

#include "vstgui/menu_list.h"
#include "vstgui/platform_x11_pane.h"

namespace VSTGUI::platform {

// Where and how a menu opens.
struct menu_opening {
  Window owner;  // the frame's window
  double scale;
  bool by_press = false;   // a button is held: it may be released on a row, or at once
  CPoint press_on_screen;  // in pixels
  Time press_time = 0;
};

class x11_menu {
 public:
  // Mapped, and with the pointer and the keyboard grabbed if they can be had by now. Null when the owner isn't visible
  // or the request has no items.
  static std::unique_ptr<x11_menu> open(x11_display& display, const menu_opening& opening, const menu_request& request);
  x11_menu(const x11_menu&) = delete;
  x11_menu& operator=(const x11_menu&) = delete;
  ~x11_menu();

  // While the menu is open it gets the events of the connection first: input is the menu's, whichever window it is for.
  // False for events that it leaves to the owner.
  bool handle(const XEvent& event);
  // What depends on time rather than on events: grabs that failed at first, scrolling at the edges, an owner that isn't
  // visible any more; and painting.
  void tick();
  // Closed when it has a value: the position of the chosen item, or -1.
  std::optional<int32_t> result() const { return result_; }

 private:
  x11_menu(x11_display& display, const menu_opening& opening, const menu_request& request);
  bool show(const CRect& field);
  void watch_top_level();
  void grab();
  void pressed(const XButtonEvent& event);
  void released(const XButtonEvent& event);
  void moved_to(const CPoint& on_screen);
  void key_pressed(const XKeyEvent& event);
  void choose(int32_t row);
  bool scroll(int rows);
  void changed(bool visibly);
  int view_y(const CPoint& on_screen) const;
  int32_t row_at(const CPoint& on_screen) const;
  void paint(painter& target) const;
  void paint_row(painter& target, const menu_list::row& row) const;
  void paint_fade(painter& target, bool downward) const;
  void paint_arrow(painter& target, bool downward) const;
  CRect to_units(CCoord top, CCoord height) const;

  x11_display& display_;
  menu_opening opening_;
  std::vector<menu_item> items_;
  int32_t current_;
  menu_list list_;
  std::shared_ptr<const font> font_;
  std::unique_ptr<x11_pane> pane_;
  CRect field_;      // in pixels of the screen, as all that follows
  CRect on_screen_;  // the menu itself
  CPoint pointer_;
  bool awaits_opening_release_;
  bool pressed_inside_ = false;
  bool has_pointer_ = false;
  bool has_keyboard_ = false;
  uint32_t opened_ms_ = 0;
  uint32_t scrolled_ms_ = 0;
  Window top_level_ = 0;
  long top_level_events_ = 0;  // that were selected before
  std::optional<int32_t> result_;
};

}  // namespace VSTGUI::platform
