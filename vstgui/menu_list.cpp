// MIT License.
#include "vstgui/menu_list.h"

#include <algorithm>
#include <utility>

namespace VSTGUI::platform {

namespace {

char lower(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string lower(std::string text) {
  std::ranges::transform(text, text.begin(), [](char letter) { return lower(letter); });
  return text;
}

}  // namespace

menu_list::menu_list(const std::vector<menu_item>& items, const menu_metrics& metrics, int32_t current)
    : metrics_(metrics), tops_({0}), current_(current) {
  for (const menu_item& item : items) {
    tops_.push_back(tops_.back() + (item.separator ? metrics.separator_height : metrics.row_height));
    selectable_.push_back(item.enabled && !item.separator && !item.heading);
    titles_.push_back(lower(item.title.substr(std::min(item.title.find_first_not_of(' '), item.title.size()))));
  }
  view_height_ = content_height();
  highlight(current);
}

void menu_list::set_view_height(int height) {
  view_height_ = height;
  const int32_t shown = highlighted_ >= 0 ? highlighted_ : current_;
  if (shown < 0 || shown >= count()) return;
  const auto at = static_cast<size_t>(shown);
  scroll_to((tops_[at] + tops_[at + 1] - rows_height()) / 2);
}

int menu_list::largest_offset() const {
  return std::max(content_height() - rows_height(), 0);
}

std::vector<menu_list::row> menu_list::visible_rows() const {
  std::vector<row> rows;
  for (int32_t index = 0; index < count(); ++index) {
    const int top = tops_[static_cast<size_t>(index)] - offset_;
    const int bottom = tops_[static_cast<size_t>(index) + 1] - offset_;
    if (bottom > 0 && top < rows_height()) rows.push_back({index, top + arrow_height(), bottom - top});
  }
  return rows;
}

int32_t menu_list::row_at(int y) const {
  if (y < arrow_height() || y >= arrow_height() + rows_height()) return -1;
  const int in_content = y - arrow_height() + offset_;
  const auto after = std::ranges::upper_bound(tops_, in_content);
  return after == tops_.end() ? -1 : static_cast<int32_t>(after - tops_.begin()) - 1;
}

bool menu_list::is_selectable(int32_t index) const {
  return index >= 0 && index < count() && selectable_[static_cast<size_t>(index)];
}

bool menu_list::highlight(int32_t index) {
  const int32_t before = std::exchange(highlighted_, is_selectable(index) ? index : -1);
  return highlighted_ != before;
}

bool menu_list::scroll_to(int offset) {
  const int before = std::exchange(offset_, std::clamp(offset, 0, largest_offset()));
  return offset_ != before;
}

bool menu_list::scroll_rows(int count) {
  return scroll_to(offset_ + count * metrics_.row_height);
}

int menu_list::scroll_direction_at(int y) const {
  if (!has_arrows()) return 0;
  if (y < arrow_height()) return can_scroll_up() ? -1 : 0;
  return y >= arrow_height() + rows_height() && can_scroll_down() ? 1 : 0;
}

int32_t menu_list::next_selectable(int32_t from, int direction) const {
  int32_t index = from;
  while (index >= 0 && index < count() && !is_selectable(index)) index += direction;
  return is_selectable(index) ? index : -1;
}

// Highlights the row, and scrolls as far as it takes to see all of it and what comes before and after.
bool menu_list::go_to(int32_t index) {
  if (!is_selectable(index)) return false;
  const bool changed = highlight(index);
  const int beside = metrics_.row_height;
  const int least = tops_[static_cast<size_t>(index) + 1] + beside - rows_height();
  const int most = tops_[static_cast<size_t>(index)] - beside;
  return scroll_to(std::clamp(offset_, least, std::max(least, most))) || changed;
}

bool menu_list::move(step wanted) {
  const int32_t last = count() - 1;
  const int32_t page = std::max(rows_height() / metrics_.row_height - 1, 1);
  const int32_t from = highlighted_;
  int32_t target = -1;
  switch (wanted) {
    case step::first:
      target = next_selectable(0, 1);
      break;
    case step::last:
      target = next_selectable(last, -1);
      break;
    case step::next:
      target = next_selectable(from + 1, 1);
      break;
    case step::previous:
      target = next_selectable(from < 0 ? last : from - 1, -1);
      break;
    case step::page_down:
      target = next_selectable(std::min(from + page, last), 1);
      if (target < 0) target = next_selectable(last, -1);
      break;
    case step::page_up:
      target = next_selectable(std::max((from < 0 ? last : from) - page, 0), -1);
      if (target < 0) target = next_selectable(0, 1);
      break;
  }
  const bool went = go_to(target);
  // Headings above the first row come into view with it.
  return (target >= 0 && target == next_selectable(0, 1) && scroll_to(0)) || went;
}

bool menu_list::is_typing(uint32_t now_ms) const {
  constexpr uint32_t pause_ms = 1000;
  return !typed_.empty() && now_ms - typed_ms_ <= pause_ms;
}

bool menu_list::type(const std::string& text, uint32_t now_ms) {
  if (text.empty()) return false;
  if (!is_typing(now_ms)) typed_.clear();
  typed_ms_ = now_ms;
  const std::string letters = lower(text);
  const bool repeats = typed_ == letters;
  const bool continues = !typed_.empty() && !repeats;
  if (!repeats) typed_ += letters;
  // The row in hand stays if it fits a longer text; a first character, or the same one again, goes on to the next row.
  const int32_t start = std::max(highlighted_, 0) + (continues || highlighted_ < 0 ? 0 : 1);
  for (int32_t i = 0; i < count(); ++i) {
    const int32_t index = (start + i) % count();
    if (is_selectable(index) && titles_[static_cast<size_t>(index)].starts_with(typed_)) return go_to(index);
  }
  return false;
}

CRect place_menu(const CRect& field, const CPoint& wanted, const CRect& monitor, CCoord least_height) {
  const CCoord width = std::min(wanted.x, monitor.getWidth());
  const CCoord left = std::clamp(field.left, monitor.left, monitor.right - width);
  const CCoord below = monitor.bottom - std::max(field.bottom, monitor.top);
  const CCoord above = std::min(field.top, monitor.bottom) - monitor.top;
  const bool opens_below = wanted.y <= below || (wanted.y > above && below >= above);
  const CCoord room = opens_below ? below : above;
  if (room < std::min(wanted.y, least_height)) {
    const CCoord height = std::min(wanted.y, monitor.getHeight());
    return {CPoint(left, std::clamp(field.bottom, monitor.top, monitor.bottom - height)), CPoint(width, height)};
  }
  const CCoord height = std::min(wanted.y, room);
  const CCoord top = opens_below ? std::max(field.bottom, monitor.top) : std::min(field.top, monitor.bottom) - height;
  return {CPoint(left, top), CPoint(width, height)};
}

}  // namespace VSTGUI::platform
