// MIT License. Tests of the rows of a menu.
#include "vstgui/menu_list.h"

#include <gtest/gtest.h>

namespace x11_tests {
namespace {

using namespace VSTGUI;
using namespace VSTGUI::platform;
using step = menu_list::step;

constexpr menu_metrics metrics = {20, 8, 10};

menu_item heading(const char* title) {
  menu_item item = {title};
  item.heading = true;
  return item;
}
menu_item separator() {
  menu_item item;
  item.separator = true;
  return item;
}
menu_item disabled(const char* title) {
  menu_item item = {title};
  item.enabled = false;
  return item;
}

// 0 heading, 1 Alpha, 2 disabled, 3 Beta, 4 separator, 5 heading, 6 alto, 7 Bellow
std::vector<menu_item> short_menu() {
  return {heading("Ones"), {"Alpha"}, disabled("Bell"), {"Beta"}, separator(), heading("Twos"), {"alto"}, {"Bellow"}};
}

std::vector<menu_item> long_menu(int rows) {
  std::vector<menu_item> items = {heading("All")};
  while (static_cast<int>(items.size()) < rows) items.push_back({"Row"});
  return items;
}

TEST(MenuList, HasRowsOfTwoHeightsAndNoneOutside) {
  const menu_list list(short_menu(), metrics, -1);
  EXPECT_EQ(list.content_height(), 148);
  EXPECT_EQ(list.row_at(0), 0);
  EXPECT_EQ(list.row_at(19), 0);
  EXPECT_EQ(list.row_at(20), 1);
  EXPECT_EQ(list.row_at(87), 4);
  EXPECT_EQ(list.row_at(88), 5);
  EXPECT_EQ(list.row_at(147), 7);
  EXPECT_EQ(list.row_at(148), -1);
  EXPECT_EQ(list.row_at(-1), -1);
}

TEST(MenuList, MovesTheHighlightOverWhatCanNotBeChosenAndStopsAtTheEnds) {
  menu_list list(short_menu(), metrics, 2);
  EXPECT_EQ(list.highlighted(), -1) << "disabled";
  std::vector<int32_t> way;
  for (const step each : {step::next, step::next, step::next, step::next, step::next, step::previous, step::previous,
                          step::first, step::previous, step::last})
    way.push_back((list.move(each), list.highlighted()));
  EXPECT_EQ(way, (std::vector<int32_t>{1, 3, 6, 7, 7, 6, 3, 1, 1, 7}));
  EXPECT_FALSE(list.move(step::last)) << "nothing to repaint";
  EXPECT_TRUE(list.highlight(4));
  EXPECT_EQ(list.highlighted(), -1) << "a separator";
  list.move(step::previous);
  EXPECT_EQ(list.highlighted(), 7) << "from below";
}

TEST(MenuList, ScrollsSoThatTheHighlightIsSeen) {
  menu_list list(long_menu(67), metrics, 30);
  list.set_view_height(220);  // ten rows and two arrows
  const auto sees = [&](int32_t index) {
    for (const menu_list::row& row : list.visible_rows())
      if (row.index == index) return row.top >= 10 && row.top + row.height <= 210;
    return false;
  };
  EXPECT_TRUE(list.has_arrows());
  EXPECT_TRUE(sees(30) && sees(27) && sees(33)) << "in the middle";
  list.move(step::page_down);
  EXPECT_EQ(list.highlighted(), 39);
  EXPECT_TRUE(sees(39) && sees(40));
  list.move(step::page_up);
  list.move(step::page_up);
  EXPECT_EQ(list.highlighted(), 21);
  EXPECT_TRUE(sees(21) && sees(20));
  list.move(step::last);
  EXPECT_TRUE(sees(66));
  EXPECT_FALSE(list.can_scroll_down());
  EXPECT_FALSE(list.move(step::page_down));
  list.move(step::first);
  EXPECT_EQ(list.highlighted(), 1);
  EXPECT_TRUE(sees(0)) << "the heading with it";
  EXPECT_FALSE(list.can_scroll_up());
}

TEST(MenuList, ScrollsByRowsAndAtItsArrows) {
  menu_list list(long_menu(67), metrics, -1);
  list.set_view_height(220);
  EXPECT_FALSE(list.scroll_rows(-3));
  EXPECT_EQ(list.scroll_direction_at(5), 0);
  EXPECT_EQ(list.scroll_direction_at(215), 1);
  EXPECT_TRUE(list.scroll_rows(3));
  EXPECT_EQ(list.row_at(10), 3);
  EXPECT_EQ(list.row_at(9), -1) << "an arrow";
  EXPECT_EQ(list.row_at(209), 12);
  EXPECT_EQ(list.row_at(210), -1);
  EXPECT_EQ(list.scroll_direction_at(5), -1);
  EXPECT_EQ(list.scroll_direction_at(100), 0);
  EXPECT_TRUE(list.scroll_rows(1000));
  EXPECT_EQ(list.row_at(209), 66);
  EXPECT_EQ(list.scroll_direction_at(215), 0);
}

TEST(MenuList, FindsTitlesThatAreTyped) {
  menu_list list(short_menu(), metrics, -1);
  uint32_t now = 0xFFFFFF00;  // the clock wraps on the way
  const auto type = [&](const char* text, uint32_t pause) {
    now += pause;
    list.type(text, now);
    return list.highlighted();
  };
  EXPECT_EQ(type("a", 0), 1);
  EXPECT_EQ(type("L", 200), 1) << "still fits";
  EXPECT_EQ(type("t", 200), 6);
  EXPECT_EQ(type("a", 1500), 1) << "a new word, from the row after";
  EXPECT_EQ(type("a", 200), 6) << "the same letter goes on";
  EXPECT_EQ(type("b", 1500), 7) << "not the disabled one";
  EXPECT_EQ(type("x", 1500), 7) << "no such title";
}

TEST(MenuList, IsPlacedBelowTheFieldElseAboveElseOverIt) {
  const CRect monitor(100, 0, 1100, 800);
  EXPECT_EQ(place_menu(CRect(200, 100, 300, 120), CPoint(150, 300), monitor, 100), CRect(200, 120, 350, 420));
  EXPECT_EQ(place_menu(CRect(200, 600, 300, 620), CPoint(150, 300), monitor, 100), CRect(200, 300, 350, 600));
  EXPECT_EQ(place_menu(CRect(200, 300, 300, 320), CPoint(150, 3000), monitor, 100), CRect(200, 320, 350, 800));
  EXPECT_EQ(place_menu(CRect(200, 500, 300, 520), CPoint(150, 3000), monitor, 100), CRect(200, 0, 350, 500));
  EXPECT_EQ(place_menu(CRect(200, 300, 300, 320), CPoint(150, 3000), monitor, 600), CRect(200, 0, 350, 800));
  EXPECT_EQ(place_menu(CRect(1050, 100, 1200, 120), CPoint(150, 50), monitor, 100), CRect(950, 120, 1100, 170));
  EXPECT_EQ(place_menu(CRect(0, 900, 50, 920), CPoint(2000, 50), monitor, 100), CRect(100, 750, 1100, 800));
}

}  // namespace
}  // namespace x11_tests
