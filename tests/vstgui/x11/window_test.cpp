// MIT License. Tests of the frame's window in a host's, with real events.
#include <gtest/gtest.h>

#include <malloc.h>
#include <stdlib.h>

#include <filesystem>
#include <utility>

#include "tests/vstgui/x11/x11_host.h"

namespace x11_tests {
namespace {

class X11Window : public testing::Test {
 protected:
  X11Window() { heard(); }

  // What the frame heard since the last time.
  std::string heard() {
    poll(*window_);
    return std::exchange(frame_.log, {});
  }
  void tell_xembed(long message) const {
    host_.send(host_.child(), "_XEMBED", {0, message, 0, static_cast<long>(host_.window)});
  }
  // The number of the host's next XEMBED message, or -1.
  long answered_xembed() const {
    host_.sync();
    XEvent event;
    const bool any = XCheckTypedWindowEvent(host_.display, host_.window, ClientMessage, &event) != 0;
    return any ? event.xclient.data.l[1] : -1;
  }
  bool opens(Window parent) {  // and closes
    return platform::open_window(reinterpret_cast<void*>(parent), CPoint(50, 50), 1, frame_) != nullptr;
  }
  bool opens_menu(platform::window& window) {
    return window.open_menu({{{"One"}}, CRect(0, 0, 10, 10), -1}, [](int32_t) {});
  }
  void destroy(Window window) const { host_.sync(XDestroyWindow(host_.display, window)); }

  host host_;
  recorder frame_;
  std::unique_ptr<platform::window> window_ = host_.open(frame_);
};

TEST_F(X11Window, HasWhatHostsAndEmbeddersLookForAsSoonAsItIsOpen) {
  const XWindowAttributes found = host_.attributes(host_.child());
  EXPECT_EQ(found.map_state, IsViewable);
  EXPECT_EQ(CRect(CPoint(found.x, found.y), CPoint(found.width, found.height)), CRect(0, 0, 200, 100));
  EXPECT_EQ(window_->position_on_screen(), CPoint(200, 300));
  Atom type = 0;
  int format = 0;
  unsigned long count = 0;
  unsigned long rest = 0;
  unsigned char* data = nullptr;
  const Atom info = XInternAtom(host_.display, "_XEMBED_INFO", False);
  XGetWindowProperty(host_.display, host_.child(), info, 0, 2, False, info, &type, &format, &count, &rest, &data);
  ASSERT_EQ(count, 2U);
  EXPECT_EQ(reinterpret_cast<long*>(data)[0], 0);
  EXPECT_EQ(reinterpret_cast<long*>(data)[1], 1) << "the mapped flag";
  XFree(data);
}

TEST_F(X11Window, FollowsThePointerOutsideFromThePressToTheRelease) {
  host_.move(10, 20);
  heard();
  host_.press();
  EXPECT_EQ(heard(), "down 10,20 2; active; ");
  host_.move(-30, 150);
  EXPECT_EQ(heard(), "moved -30,150 2; ") << "and hasn't left";
  host_.release();
  EXPECT_EQ(heard(), "up -30,150 2; left; inactive; ");
  EXPECT_TRUE(host_.has_focus(PointerRoot)) << "given back";
}

TEST_F(X11Window, TellsButtonsModifiersAndTheWheel) {
  host_.move(10, 20);
  host_.type(XK_Caps_Lock);
  host_.hold(XK_Shift_L, true);
  heard();
  host_.press(3);
  EXPECT_EQ(heard(), "down 10,20 24; active; ") << "right and shift";
  host_.release(3);
  host_.hold(XK_Shift_L, false);
  host_.type(XK_Caps_Lock);
  heard();
  for (const unsigned button : {4U, 5U, 6U, 7U, 8U}) {
    host_.press(button);
    host_.release(button);
  }
  EXPECT_EQ(heard(),
            "wheel 10,20 y+1; wheel 10,20 y-1; wheel 10,20 x+1; wheel 10,20 x-1; down 10,20 256; up 10,20 256; ");
}

TEST_F(X11Window, CountsTwoQuickClicksInOnePlaceAsADoubleClick) {
  for (const int x : {10, 12, 12}) host_.click(x, 20);
  poll(*window_);
  EXPECT_TRUE(frame_.has("down 10,20 2;") && frame_.has("down 12,20 1026;") && frame_.has("down 12,20 2;"));
  host_.click(30, 20);
  EXPECT_NE(heard().find("down 30,20 2;"), std::string::npos);
}

TEST_F(X11Window, KeepsTheLastOfSeveralMotionsButNoneAcrossAButton) {
  host_.move(9, 20);
  heard();
  for (const int x : {10, 11, 12}) host_.move(x, 20);
  host_.press();
  for (const int x : {13, 14}) host_.move(x, 20);
  host_.release();
  EXPECT_EQ(heard(), "moved 12,20 0; down 12,20 2; moved 14,20 2; up 14,20 2; active; ");
}

TEST_F(X11Window, GivesPointsAtItsScale) {
  window_->resize(CPoint(200, 100), 2);
  heard();
  EXPECT_EQ(host_.attributes(host_.child()).width, 400);
  host_.click(300, 150);
  EXPECT_NE(heard().find("down 150,75 2;"), std::string::npos);
  EXPECT_EQ(window_->mouse_position(), CPoint(150, 75));
}

TEST_F(X11Window, TakesKeysAfterAPressAndPassesOnThoseThatItDoesNotHandle) {
  host_.click(10, 20);
  heard();
  EXPECT_TRUE(host_.has_focus(host_.child()));
  host_.type(XK_a);
  EXPECT_EQ(heard(), "key 97 0 0; key up 97; ");
  EXPECT_TRUE(host_.got_key(KeyPress, XK_a) && host_.got_key(KeyRelease, XK_a));
  frame_.handles_keys = true;
  host_.type(XK_Return);
  EXPECT_EQ(heard(), "key 0 4 0; key up 0; ");
  EXPECT_FALSE(host_.got_key(KeyPress, XK_Return));
  constexpr KeySym keys[] = {XK_KP_Enter, XK_Tab, XK_Escape, XK_Left, XK_Down, XK_Page_Up, XK_Shift_L, XK_b};
  for (const KeySym key : keys) host_.hold(key, true);
  EXPECT_EQ(heard(), "key 0 19 0; key 0 2 0; key 0 6 0; key 0 11 0; key 0 14 0; key 0 15 0; key 0 54 0; key 66 0 1; ");
  for (const KeySym key : keys) host_.hold(key, false);
  window_.reset();
  EXPECT_TRUE(host_.has_focus(PointerRoot)) << "given back";
}

TEST_F(X11Window, LeavesTheFocusToAHostThatSpeaksXembed) {
  tell_xembed(0);
  tell_xembed(4);
  EXPECT_EQ(heard(), "active; ");
  host_.click(10, 20);
  heard();
  EXPECT_EQ(answered_xembed(), 3) << "asks for the focus";
  EXPECT_TRUE(host_.has_focus(PointerRoot));
  host_.type(XK_Tab);
  heard();
  EXPECT_EQ(answered_xembed(), 6) << "the next element";
  EXPECT_FALSE(host_.got_key(KeyPress, XK_Tab));
  tell_xembed(10);
  host_.click(10, 20);
  EXPECT_EQ(heard(), "") << "a modal dialogue";
  tell_xembed(11);
  tell_xembed(2);
  EXPECT_EQ(heard(), "inactive; ");
}

TEST_F(X11Window, CancelsAPressWhoseReleaseWillNotCome) {
  host_.move(10, 20);
  host_.press();
  heard();
  host_.sync(XUnmapWindow(host_.display, host_.window));
  EXPECT_EQ(heard(), "inactive; cancelled; ");
  host_.release();
  host_.sync(XMapWindow(host_.display, host_.window));
  host_.press();
  heard();
  destroy(host_.window);
  poll(*window_);
  EXPECT_TRUE(frame_.has("cancelled"));
}

TEST_F(X11Window, IsDeadButHarmlessOnceItsParentOrItsConnectionIsGone) {
  for (const bool killed : {true, false}) {
    window_ = host_.open(frame_);
    killed ? host_.sync(XKillClient(host_.display, host_.child())) : destroy(host_.window);
    window_->invalidate(CRect(0, 0, 10, 10));
    window_->poll_events();
    window_->resize(CPoint(20, 20), 2);
    window_->set_cursor(kCursorHand);
    window_->mouse_position();
    window_->position_on_screen();
    EXPECT_FALSE(opens_menu(*window_));
    window_->poll_events();
    window_.reset();
  }
}

TEST_F(X11Window, PaintsOnlyWhatIsInvalidAndShowsTheRestFromItsBuffer) {
  frame_.colour = kGreenCColor;
  window_->invalidate(CRect(10, 10, 30, 20));
  window_->invalidate(CRect(20, 15, 50, 40));
  window_->invalidate(CRect(100, 50, 110, 60));
  EXPECT_EQ(heard(), "paint 10,10,50,40; paint 100,50,110,60; ");
  const Window cover = XCreateSimpleWindow(host_.display, host_.window, 0, 0, 400, 200, 0, 0, 0);
  host_.sync(XMapWindow(host_.display, cover));
  destroy(cover);
  EXPECT_EQ(heard(), "");
  EXPECT_EQ(host_.pixel(host_.child(), 5, 5), 0xFF0000U);
  EXPECT_EQ(host_.pixel(host_.child(), 105, 55), 0x00FF00U);
  host_.sync(XResizeWindow(host_.display, host_.child(), 300, 150));
  heard();
  EXPECT_EQ(host_.pixel(host_.child(), 250, 120), host_.pixel(host_.child(), 250, 20)) << "filled beyond the frame";
  EXPECT_EQ(host_.pixel(host_.child(), 5, 5), 0xFF0000U);
}

TEST_F(X11Window, KeepsToItselfAmongOthersAndDoesNotPollWithinAnEvent) {
  const host other_host;  // covers the first one
  recorder other_frame;
  const std::unique_ptr<platform::window> other = other_host.open(other_frame);
  other_frame.on_down = [&] { other->poll_events(); };
  other_host.move(10, 20);
  poll(*other);
  other_frame.log.clear();
  other_host.press();
  other_host.release();
  window_.reset();
  poll(*other);
  EXPECT_EQ(other_frame.log, "down 10,20 2; up 10,20 2; active; ");
  EXPECT_EQ(frame_.log, "");
}

int host_errors = 0;
int count_error(Display*, XErrorEvent*) {
  return ++host_errors;
}

TEST_F(X11Window, LeavesTheErrorsOfOthersToTheHost) {
  XErrorHandler const before = XSetErrorHandler(count_error);
  frame_.on_down = [this] { host_.sync(XMapWindow(host_.display, 0x1FFFFFFF)); };
  host_.click(10, 20);
  heard();
  EXPECT_EQ(host_errors, 1);
  EXPECT_FALSE(opens(0x1FFFFFFF));
  EXPECT_EQ(host_errors, 1) << "our own";
  EXPECT_EQ(XSetErrorHandler(before), count_error);
}

TEST_F(X11Window, OpensOnScreensAndVisualsOfOtherDepths) {
  const host shallow(1);
  const std::unique_ptr<platform::window> on_shallow = shallow.open(frame_);
  poll(*on_shallow);
  EXPECT_EQ(shallow.pixel(shallow.child(), 5, 5), 0xF800U);

  XVisualInfo deep = {};
  ASSERT_NE(XMatchVisualInfo(host_.display, 0, 32, TrueColor, &deep), 0);
  XSetWindowAttributes values = {};
  values.colormap = XCreateColormap(host_.display, host_.window, deep.visual, AllocNone);
  window_.reset();
  host_.window = XCreateWindow(host_.display, DefaultRootWindow(host_.display), 0, 0, 200, 100, 0, 32, InputOutput,
                               deep.visual, CWColormap | CWBorderPixel, &values);
  host_.sync(XMapWindow(host_.display, host_.window));
  window_ = host_.open(frame_);
  heard();
  EXPECT_EQ(host_.pixel(host_.child(), 5, 5), 0xFFFF0000U);
}

TEST_F(X11Window, IsRefusedWithoutAParentOrADisplay) {
  EXPECT_TRUE(opens(host_.window));
  EXPECT_FALSE(opens(0));
  EXPECT_FALSE(opens(XCreateWindow(host_.display, host_.window, 0, 0, 9, 9, 0, 0, InputOnly, nullptr, 0, nullptr)));
  const std::string display = getenv("DISPLAY");
  setenv("DISPLAY", ":59999", 1);
  EXPECT_FALSE(opens(host_.window));
  platform::show_message("Title", "Text");
  setenv("DISPLAY", display.c_str(), 1);
}

TEST_F(X11Window, LeavesNothingBehindWhenOpenedAndClosedAThousandTimes) {
  const auto open_files = [] { return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}); };
  const auto cycle = [&] {
    const std::unique_ptr<platform::window> again = host_.open(frame_);
    again->poll_events();
    ASSERT_TRUE(opens_menu(*again));
    again->poll_events();
    frame_.log.clear();
  };
  for (int i = 0; i < 20; ++i) cycle();
  const auto files = open_files();
  const size_t bytes = mallinfo2().uordblks;
  for (int i = 0; i < 1000; ++i) cycle();
  EXPECT_EQ(open_files(), files);
  EXPECT_LT(mallinfo2().uordblks, bytes + 10000) << "less than ten bytes each time";
  EXPECT_NE(host_.child(), 0U) << "the first one alone";
  EXPECT_EQ(host_.menu(), 0U);
}

}  // namespace
}  // namespace x11_tests
