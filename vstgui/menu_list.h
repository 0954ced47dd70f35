// MIT License. The rows of a pop-up menu: their places, the highlight, scrolling, and typing ahead.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "vstgui/platform.h"

namespace VSTGUI::platform {

struct menu_metrics {  // in pixels
  int row_height = 19;
  int separator_height = 9;
  int arrow_height = 13;  // of the strips above and below rows that scroll
};

// Coordinates are pixels from the top of the view, which is all that is inside the menu's border.
class menu_list {
 public:
  // `current` is highlighted if it can be chosen. The view shows all rows at first.
  menu_list(const std::vector<menu_item>& items, const menu_metrics& metrics, int32_t current);

  // Of all rows, without arrows.
  int content_height() const { return tops_.back(); }
  int view_height() const { return view_height_; }
  // A view that is too low for all rows has strips for arrows. The highlighted row, or else the current one, is moved
  // to the middle as far as possible.
  void set_view_height(int height);
  bool has_arrows() const { return view_height_ < content_height(); }
  int arrow_height() const { return has_arrows() ? metrics_.arrow_height : 0; }
  bool can_scroll_up() const { return offset_ > 0; }
  bool can_scroll_down() const { return offset_ < largest_offset(); }

  struct row {
    int32_t index;
    int top;
    int height;
  };
  // Those that are visible at least in part, from the top.
  std::vector<row> visible_rows() const;
  // -1 on arrows, below the last row and outside the view.
  int32_t row_at(int y) const;
  bool is_selectable(int32_t index) const;
  int32_t highlighted() const { return highlighted_; }

  // These return whether anything changed that is visible.
  bool highlight(int32_t index);  // nothing if the row can't be chosen
  bool scroll_rows(int count);    // downward if positive
  // -1 at the upper arrow and above it, 1 at the lower one and below it, 0 elsewhere or where nothing scrolls.
  int scroll_direction_at(int y) const;

  // Moves the highlight to another row that can be chosen, and the row into the view. From none, `next` takes the
  // first row and `previous` the last one. Pages are as long as the view.
  enum class step { previous, next, page_up, page_down, first, last };
  bool move(step wanted);
  // Typing ahead: highlights the next row whose title starts with what was typed within a second, without regard to
  // ASCII case. One character over and over goes through the rows that start with it. `now_ms` may wrap.
  bool type(const std::string& text, uint32_t now_ms);
  bool is_typing(uint32_t now_ms) const;

 private:
  int32_t count() const { return static_cast<int32_t>(selectable_.size()); }
  int rows_height() const { return view_height_ - 2 * arrow_height(); }
  int largest_offset() const;
  int32_t next_selectable(int32_t from, int direction) const;
  bool go_to(int32_t index);
  bool scroll_to(int offset);

  menu_metrics metrics_;
  std::vector<int> tops_;  // of each row in the content, and the end
  std::vector<bool> selectable_;
  std::vector<std::string> titles_;  // in lower case, without blanks in front
  int32_t current_;
  int32_t highlighted_ = -1;
  int view_height_;
  int offset_ = 0;
  std::string typed_;
  uint32_t typed_ms_ = 0;
};

// The menu's rectangle for a field and a wanted size, within the monitor, all in pixels: below the field if there is
// room, else above it, else on the side with more room. Sides with room for less than `least_height` don't count: then
// the menu may cover the field.
CRect place_menu(const CRect& field, const CPoint& wanted, const CRect& monitor, CCoord least_height);

}  // namespace VSTGUI::platform
