// MIT License. Tests of the pop-up menu, with real events.
#include <gtest/gtest.h>

#include "tests/vstgui/x11/x11_host.h"

namespace x11_tests {
namespace {

using namespace VSTGUI;

// 67 rows as the product's menu has them: 0 is a heading, 1 "Sound 1" and so on, with "Miogua" at 40.
std::vector<platform::menu_item> sixty_seven_rows() {
  std::vector<platform::menu_item> items;
  for (int i = 0; i < 67; ++i) items.push_back({i == 40 ? "Miogua" : "Sound " + std::to_string(i)});
  items[0].heading = true;
  items[20].separator = true;
  return items;
}

// The menu's field is at 10,10 to 150,30 of the window at 200,300 on the screen, so the menu starts at 210,330.
class X11Menu : public testing::Test {
 protected:
  static constexpr int row_height = 19;
  static constexpr int border = 5;
  static constexpr int arrow = 14;

  X11Menu() { poll_all(*window_); }

  bool open(std::vector<platform::menu_item> items, int32_t current = -1) {
    chosen_.clear();
    const platform::menu_request request = {std::move(items), CRect(10, 10, 150, 30), current};
    return window_->open_menu(request, [this](int32_t index) { chosen_.push_back(index); });
  }
  bool open_three() { return open({{"One"}, {"Two"}, {"Three"}}); }
  void poll() { poll_all(*window_); }
  bool is_open() const {
    XSync(host_.display, False);
    return host_.menu() != 0;
  }
  // Whether the arrow at `top` of the open menu shows that there is more.
  bool has_bright_arrow(int top) const {
    XImage* const strip = XGetImage(host_.display, host_.menu(), 0, top, 140, arrow, AllPlanes, ZPixmap);
    bool bright = false;
    for (int i = 0; i < 140 * arrow; ++i) bright |= (XGetPixel(strip, i % 140, i / 140) & 0xFF00) > 0xC000;
    XDestroyImage(strip);
    return bright;
  }
  // In the host's coordinates.
  static int middle_of(int row) { return 30 + border + row * row_height + row_height / 2; }

  host host_;
  recorder frame_;
  std::unique_ptr<platform::window> window_ = host_.open(frame_);
  std::vector<int32_t> chosen_;
};

using chosen = std::vector<int32_t>;

TEST_F(X11Menu, GivesTheRowThatIsClicked) {
  ASSERT_TRUE(open_three());
  EXPECT_FALSE(open_three()) << "one at a time";
  const XWindowAttributes menu = host_.attributes(host_.menu());
  EXPECT_EQ(CPoint(menu.x, menu.y), CPoint(210, 330));
  EXPECT_EQ(CPoint(menu.width, menu.height), CPoint(140, 2 * border + 3 * row_height)) << "as wide as the field";
  frame_.log.clear();
  host_.click(50, middle_of(1));
  EXPECT_EQ(chosen_, chosen{});
  poll();
  EXPECT_EQ(chosen_, chosen{1});
  EXPECT_FALSE(is_open());
  EXPECT_EQ(frame_.count("down"), 0) << "the frame below hears nothing";
}

TEST_F(X11Menu, GivesTheRowOnWhichThePressThatOpenedItIsReleased) {
  frame_.on_down = [this] { open_three(); };
  host_.move(20, 20);
  host_.press();
  poll();
  ASSERT_TRUE(is_open());
  EXPECT_TRUE(frame_.has("cancelled")) << "the release is the menu's";
  host_.move(50, middle_of(2));
  host_.release();
  poll();
  EXPECT_EQ(chosen_, chosen{2});
}

TEST_F(X11Menu, StaysOpenAfterTheClickThatOpenedIt) {
  frame_.on_down = [this] { open_three(); };
  host_.click(20, 20);
  poll();
  poll();
  EXPECT_TRUE(is_open());
  EXPECT_EQ(chosen_, chosen{});
  frame_.log.clear();
  host_.click(20, 20);
  poll();
  EXPECT_EQ(chosen_, chosen{-1});
  poll();
  EXPECT_FALSE(is_open()) << "a click on the field closes it, and doesn't open it again";
  EXPECT_EQ(frame_.count("down") + frame_.count("up"), 0);
}

TEST_F(X11Menu, IsDismissedByEscapeAndByAPressOutside) {
  for (const bool by_key : {true, false}) {
    ASSERT_TRUE(open_three());
    poll();
    by_key ? host_.type(XK_Escape) : host_.click(900, 600);
    poll();
    EXPECT_EQ(chosen_, chosen{-1});
    EXPECT_FALSE(is_open());
  }
}

TEST_F(X11Menu, IsSearchedByTyping) {
  ASSERT_TRUE(open(sixty_seven_rows(), 5));
  for (const KeySym key : {XK_m, XK_i, XK_o, XK_Return}) host_.type(key);
  poll();
  EXPECT_EQ(chosen_, chosen{40});
  ASSERT_TRUE(open(sixty_seven_rows(), 19));
  for (const KeySym key : {XK_Down, XK_KP_Enter}) host_.type(key);
  poll();
  EXPECT_EQ(chosen_, chosen{21}) << "past the separator";
}

TEST_F(X11Menu, ScrollsByTheWheelAndAtItsEdge) {
  ASSERT_TRUE(open(sixty_seven_rows()));
  const XWindowAttributes menu = host_.attributes(host_.menu());
  EXPECT_EQ(menu.y + menu.height, 1024) << "to the screen's edge";
  host_.move(50, middle_of(2) + arrow);
  for (int i = 0; i < 2; ++i) host_.click(50, middle_of(2) + arrow, 5);
  host_.click(50, middle_of(2) + arrow);
  poll();
  EXPECT_EQ(chosen_, chosen{8}) << "three rows a step";

  ASSERT_TRUE(open(sixty_seven_rows()));
  poll();
  EXPECT_TRUE(has_bright_arrow(menu.height - border - arrow));
  for (int i = 0; i < 10; ++i) host_.click(50, 100, 5);
  host_.move(50, menu.y + menu.height - 300 - border - arrow / 2);
  ASSERT_TRUE(poll_until(*window_, [&] { return !has_bright_arrow(menu.height - border - arrow); }));
  host_.click(50, menu.y + menu.height - 300 - border - arrow - row_height / 2);
  poll();
  EXPECT_EQ(chosen_, chosen{66});
}

TEST_F(X11Menu, ClosesWithItsWindow) {
  ASSERT_TRUE(open_three());
  window_.reset();
  EXPECT_FALSE(is_open());
  EXPECT_EQ(chosen_, chosen{}) << "the frame is gone";
}

TEST_F(X11Menu, IsDismissedWhenTheHostLosesTheFocusOrTheWindow) {
  const host other;
  const auto is_dismissed = [this](const std::function<void()>& event) {
    EXPECT_TRUE(open_three());
    poll();
    EXPECT_EQ(chosen_, chosen{});
    event();
    XSync(host_.display, False);
    poll();
    return chosen_ == chosen{-1} && !is_open();
  };
  XSetInputFocus(host_.display, host_.window, RevertToParent, CurrentTime);
  XSync(host_.display, False);
  EXPECT_TRUE(is_dismissed([&] {
    XSetInputFocus(other.display, other.window, RevertToParent, CurrentTime);
    XSync(other.display, False);
  }));
  EXPECT_TRUE(is_dismissed([this] { XUnmapWindow(host_.display, host_.window); }));
  EXPECT_FALSE(open_three()) << "not visible";
  XMapWindow(host_.display, host_.window);
  XSync(host_.display, False);
  EXPECT_TRUE(is_dismissed([this] { XDestroyWindow(host_.display, host_.menu()); }));
}

TEST_F(X11Menu, IsDismissedWhenTheHostsWindowIsDestroyed) {
  ASSERT_TRUE(open_three());
  XDestroyWindow(host_.display, host_.window);
  XSync(host_.display, False);
  poll();
  EXPECT_EQ(chosen_, chosen{-1});
  EXPECT_FALSE(is_open());
}

}  // namespace
}  // namespace x11_tests
