// MIT License. Tests of the pop-up menu, with real events.
#include <gtest/gtest.h>

#include "tests/vstgui/x11/x11_host.h"

namespace x11_tests {
namespace {

using rows = std::vector<int32_t>;

// The menu's field is at 10,10 to 150,30 of the window at 200,300 on the screen, so the menu starts at 210,330.
class X11Menu : public testing::Test {
 protected:
  static constexpr int row_height = 19;
  static constexpr int border = 5;
  static constexpr int arrow = 14;

  X11Menu() { poll(*window_); }

  bool open(std::vector<platform::menu_item> items, int32_t current = -1) {
    chosen_.clear();
    const platform::menu_request request = {std::move(items), CRect(10, 10, 150, 30), current};
    return window_->open_menu(request, [this](int32_t index) { chosen_.push_back(index); });
  }
  bool open_three() { return open({{"One"}, {"Two"}, {"Three"}}); }
  // As many as the product's menu has: "Sound 1" and so on, with "Miogua" at 40.
  bool open_long(int32_t current) {
    std::vector<platform::menu_item> items;
    for (int i = 0; i < 67; ++i) items.push_back({i == 40 ? "Miogua" : "Sound " + std::to_string(i)});
    items[20].separator = true;
    return open(items, current);
  }
  // What was chosen, once the menu has heard all; it must be closed then.
  rows answer() {
    poll(*window_);
    EXPECT_EQ(host_.menu() == 0, !chosen_.empty());
    return chosen_;
  }
  // Whether the arrow at `top` of the menu shows that there is more.
  bool has_bright_arrow(int top) const {
    bool bright = false;
    for (int y = top; y < top + arrow; ++y) bright |= (host_.pixel(host_.menu(), 70, y) & 0xFF00) > 0xA000;
    return bright;
  }
  // In the host's coordinates.
  static int middle_of(int row) { return 30 + border + row * row_height + row_height / 2; }

  host host_;
  recorder frame_;
  std::unique_ptr<platform::window> window_ = host_.open(frame_);
  rows chosen_;
};

TEST_F(X11Menu, GivesTheRowThatIsClicked) {
  ASSERT_TRUE(open_three());
  EXPECT_FALSE(window_->open_menu({{{"Four"}}, CRect(), -1}, [](int32_t) {})) << "one at a time";
  const XWindowAttributes menu = host_.attributes(host_.menu());
  EXPECT_EQ(CRect(CPoint(menu.x, menu.y), CPoint(menu.width, menu.height)),
            CRect(CPoint(210, 330), CPoint(140, 2 * border + 3 * row_height)))
      << "as wide as the field";
  host_.click(50, middle_of(1));
  EXPECT_EQ(chosen_, rows{}) << "until the host polls";
  EXPECT_EQ(answer(), rows{1});
  EXPECT_FALSE(frame_.has("down")) << "the frame below hears nothing";
}

TEST_F(X11Menu, GivesTheRowOnWhichThePressThatOpenedItIsReleased) {
  frame_.on_down = [this] { open_three(); };
  host_.move(20, 20);
  host_.press();
  EXPECT_EQ(answer(), rows{});
  EXPECT_TRUE(frame_.has("cancelled")) << "the release is the menu's";
  host_.move(50, middle_of(2));
  host_.release();
  EXPECT_EQ(answer(), rows{2});
}

TEST_F(X11Menu, StaysOpenAfterTheClickThatOpenedItUntilTheNextOne) {
  frame_.on_down = [this] { open_three(); };
  host_.move(20, 20);
  host_.press();
  EXPECT_EQ(answer(), rows{});
  host_.move(60, 25);  // an unsteady hand
  host_.release();
  EXPECT_EQ(answer(), rows{});
  frame_.log.clear();
  host_.click(20, 20);
  EXPECT_EQ(answer(), rows{-1});
  EXPECT_FALSE(frame_.has("down") || frame_.has("up")) << "and doesn't open it again";
}

TEST_F(X11Menu, IsDismissedByEscapeAndByAPressOutside) {
  for (const bool by_key : {true, false}) {
    ASSERT_TRUE(open_three());
    poll(*window_);
    by_key ? host_.type(XK_Escape) : host_.click(900, 600);
    EXPECT_EQ(answer(), rows{-1});
  }
}

TEST_F(X11Menu, IsUsedByKeys) {
  constexpr KeySym keys[] = {XK_m, XK_i, XK_o, XK_Return};
  ASSERT_TRUE(open_long(5));
  for (const KeySym key : keys) host_.type(key);
  EXPECT_EQ(answer(), rows{40});
  ASSERT_TRUE(open_long(19));
  host_.type(XK_Down);
  host_.type(XK_KP_Enter);
  EXPECT_EQ(answer(), rows{21}) << "past the separator";
}

TEST_F(X11Menu, ScrollsByTheWheelAndAtItsEdge) {
  ASSERT_TRUE(open_long(-1));
  const XWindowAttributes menu = host_.attributes(host_.menu());
  ASSERT_EQ(menu.y + menu.height, 1024) << "to the screen's edge";
  for (int i = 0; i < 2; ++i) host_.click(50, middle_of(2) + arrow, 5);
  host_.click(50, middle_of(2) + arrow);
  EXPECT_EQ(answer(), rows{8}) << "three rows a step";

  ASSERT_TRUE(open_long(-1));
  const int lower_arrow = menu.height - border - arrow;
  for (int i = 0; i < 10; ++i) host_.click(50, 100, 5);
  EXPECT_EQ(answer(), rows{});
  EXPECT_TRUE(has_bright_arrow(lower_arrow));
  host_.move(50, 30 + lower_arrow + arrow / 2);
  ASSERT_TRUE(wait_until([&] { return window_->poll_events(), !has_bright_arrow(lower_arrow); }));
  host_.click(50, 30 + lower_arrow - row_height / 2);
  EXPECT_EQ(answer(), rows{66});
}

TEST_F(X11Menu, IsDismissedWhenTheHostLosesTheFocusOrTheWindow) {
  const host other;
  host_.sync(XSetInputFocus(host_.display, host_.window, RevertToParent, CurrentTime));
  const std::function<void()> events[] = {
      [&] { other.sync(XSetInputFocus(other.display, other.window, RevertToParent, CurrentTime)); },
      [&] { host_.sync(XDestroyWindow(host_.display, host_.menu())); },
      [&] { host_.sync(XUnmapWindow(host_.display, host_.window)); },
      [&] { host_.sync(XDestroyWindow(host_.display, host_.window)); },
  };
  for (const auto& event : events) {
    host_.sync(XMapWindow(host_.display, host_.window));
    ASSERT_TRUE(open_three());
    EXPECT_EQ(answer(), rows{});
    event();
    EXPECT_EQ(answer(), rows{-1});
  }
}

TEST_F(X11Menu, EndsWithItsWindowWithoutAnAnswer) {
  ASSERT_TRUE(open_three());
  window_.reset();
  EXPECT_EQ(host_.menu(), 0U);
  EXPECT_EQ(chosen_, rows{});
}

}  // namespace
}  // namespace x11_tests
