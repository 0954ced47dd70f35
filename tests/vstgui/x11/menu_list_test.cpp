// MIT License. Tests of the rows of a menu.
#include "vstgui/menu_list.h"

#include <gtest/gtest.h>

namespace x11_tests {
namespace {

using namespace VSTGUI;
using namespace VSTGUI::platform;
using step = menu_list::step;

constexpr menu_metrics metrics = {20, 8, 10};

std::vector<menu_item> short_menu() {
  const auto item = [](const char* title, bool separator, bool heading, bool enabled) {
    return menu_item{title, separator, heading, enabled, false};
  };
  return {item("Ones", false, true, true),
          {"Alpha"},
          item("Bell", false, false, false),
          {"Beta"},
          item("", true, false, true),
          item("Twos", false, true, true),
          {"alto"},
          {"Bellow"}};
}

// 66 rows below a heading; the view has room for ten of them and two arrows.
menu_list long_menu(int32_t current) {
  std::vector<menu_item> items(67, menu_item{"Row"});
  items[0].heading = true;
  menu_list list(items, metrics, current);
  list.set_view_height(220);
  return list;
}

TEST(MenuList, HasRowsOfTwoHeightsAndNoneOutside) {
  const menu_list list(short_menu(), metrics, -1);
  EXPECT_EQ(list.content_height(), 148);
  std::vector<int32_t> rows;
  for (const int y : {-1, 0, 19, 20, 87, 88, 147, 148}) rows.push_back(list.row_at(y));
  EXPECT_EQ(rows, (std::vector<int32_t>{-1, 0, 0, 1, 4, 5, 7, -1}));
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
  menu_list list = long_menu(30);
  const auto sees = [&](int32_t index) {
    for (const menu_list::row& row : list.visible_rows())
      if (row.index == index) return row.top >= 10 && row.top + row.height <= 210;
    return false;
  };
  EXPECT_TRUE(sees(30) && sees(27) && sees(33)) << "in the middle";
  list.move(step::page_down);
  EXPECT_TRUE(list.highlighted() == 39 && sees(39) && sees(40));
  for (int i = 0; i < 2; ++i) list.move(step::page_up);
  EXPECT_TRUE(list.highlighted() == 21 && sees(21) && sees(20));
  list.move(step::last);
  EXPECT_TRUE(sees(66) && !list.can_scroll_down() && !list.move(step::page_down));
  list.move(step::first);
  EXPECT_TRUE(list.highlighted() == 1 && sees(0) && !list.can_scroll_up()) << "the heading with it";
}

TEST(MenuList, ScrollsByRowsAndAtItsArrows) {
  menu_list list = long_menu(-1);
  // The direction at both arrows and in between, and the first and the last row.
  const auto view = [&] {
    std::vector<int32_t> seen;
    for (const int y : {5, 100, 215}) seen.push_back(list.scroll_direction_at(y));
    for (const int y : {9, 10, 209, 210}) seen.push_back(list.row_at(y));
    return seen;
  };
  EXPECT_FALSE(list.scroll_rows(-3));
  EXPECT_EQ(view(), (std::vector<int32_t>{0, 0, 1, -1, 0, 9, -1}));
  EXPECT_TRUE(list.scroll_rows(3));
  EXPECT_EQ(view(), (std::vector<int32_t>{-1, 0, 1, -1, 3, 12, -1}));
  EXPECT_TRUE(list.scroll_rows(1000));
  EXPECT_EQ(view(), (std::vector<int32_t>{-1, 0, 0, -1, 57, 66, -1}));
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
