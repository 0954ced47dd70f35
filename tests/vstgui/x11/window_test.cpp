// MIT License. Tests of the frame's window in a host's, with real events.
#include <gtest/gtest.h>

#include <malloc.h>
#include <stdlib.h>

#include <filesystem>

#include "tests/vstgui/x11/x11_host.h"

#include <X11/Xatom.h>

namespace x11_tests {
namespace {

using namespace VSTGUI;
using lines = std::vector<std::string>;

class X11Window : public testing::Test {
 protected:
  X11Window() {
    poll_all(*window_);
    frame_.log.clear();
  }

  // What the frame was told since the last time.
  lines heard() {
    poll_all(*window_);
    poll_all(*window_);  // what the first one brought about, such as the focus
    return std::exchange(frame_.log, {});
  }
  Window focus() const {
    Window holder = 0;
    int revert_to = 0;
    XGetInputFocus(host_.display, &holder, &revert_to);
    return holder;
  }
  void send_xembed(long message, long data) const {
    XEvent event = {};
    event.xclient.type = ClientMessage;
    event.xclient.window = host_.child();
    event.xclient.message_type = XInternAtom(host_.display, "_XEMBED", False);
    event.xclient.format = 32;
    event.xclient.data.l[1] = message;
    event.xclient.data.l[3] = data;
    XSendEvent(host_.display, event.xclient.window, False, NoEventMask, &event);
    XSync(host_.display, False);
  }
  // The next message of XEMBED that the host gets; -1 if there is none.
  long received_xembed() const {
    XSync(host_.display, False);
    XEvent event;
    return XCheckTypedWindowEvent(host_.display, host_.window, ClientMessage, &event) != 0 ? event.xclient.data.l[1]
                                                                                           : -1;
  }
  void expect_harmless() {
    window_->invalidate(CRect(0, 0, 10, 10));
    window_->poll_events();
    window_->resize(CPoint(20, 20), 2);
    window_->set_cursor(kCursorHand);
    window_->mouse_position();
    window_->position_on_screen();
    EXPECT_FALSE(window_->open_menu({{{"One"}}, CRect(0, 0, 10, 10), -1}, [](int32_t) {}));
    window_->poll_events();
    window_.reset();
  }

  host host_;
  recorder frame_;
  std::unique_ptr<platform::window> window_ = host_.open(frame_);
};

TEST_F(X11Window, HasWhatHostsAndEmbeddersLookForAsSoonAsItIsOpen) {
  const Window child = host_.child();
  ASSERT_NE(child, 0U);
  const XWindowAttributes found = host_.attributes(child);
  EXPECT_EQ(found.map_state, IsViewable);
  EXPECT_EQ(CRect(CPoint(found.x, found.y), CPoint(found.width, found.height)), CRect(0, 0, 200, 100));
  EXPECT_EQ(found.border_width, 0);
  Atom type = 0;
  int format = 0;
  unsigned long count = 0;
  unsigned long rest = 0;
  unsigned char* data = nullptr;
  const Atom info = XInternAtom(host_.display, "_XEMBED_INFO", False);
  XGetWindowProperty(host_.display, child, info, 0, 2, False, info, &type, &format, &count, &rest, &data);
  ASSERT_EQ(count, 2U);
  EXPECT_EQ(reinterpret_cast<long*>(data)[0], 0);
  EXPECT_EQ(reinterpret_cast<long*>(data)[1], 1) << "the mapped flag";
  XFree(data);
  EXPECT_EQ(window_->position_on_screen(), CPoint(200, 300));
}

TEST_F(X11Window, FollowsThePointerOutsideFromThePressToTheRelease) {
  host_.move(10, 20);
  heard();
  host_.press();
  EXPECT_EQ(heard(), (lines{"down 10,20 2", "active"}));
  host_.move(-30, 150);
  EXPECT_EQ(heard(), lines{"moved -30,150 2"}) << "and hasn't left";
  host_.release();
  EXPECT_EQ(heard(), (lines{"up -30,150 2", "left", "inactive"}));
  EXPECT_EQ(focus(), static_cast<Window>(PointerRoot)) << "given back";
}

TEST_F(X11Window, TellsButtonsModifiersAndTheWheel) {
  host_.move(10, 20);
  host_.type(XK_Caps_Lock);
  host_.hold(XK_Shift_L, true);
  heard();
  host_.press(3);
  EXPECT_EQ(heard(), (lines{"down 10,20 24", "active"})) << "right and shift";
  host_.release(3);
  host_.hold(XK_Shift_L, false);
  host_.type(XK_Caps_Lock);
  heard();
  for (const unsigned button : {4U, 5U, 6U, 7U, 8U}) {
    host_.press(button);
    host_.release(button);
  }
  EXPECT_EQ(heard(), (lines{"wheel 10,20 0 y forward", "wheel 10,20 0 y back", "wheel 10,20 0 x forward",
                            "wheel 10,20 0 x back", "down 10,20 256", "up 10,20 256"}));
}

TEST_F(X11Window, CountsTwoQuickClicksInOnePlaceAsADoubleClick) {
  for (const int x : {10, 12, 12, 40}) host_.click(x, 20);
  poll_all(*window_);
  EXPECT_EQ(frame_.count("down"), 4);
  EXPECT_EQ(frame_.count("down 12,20 1026"), 1) << "the second, not the third";
}

TEST_F(X11Window, KeepsTheLastOfSeveralMotionsButNoneAcrossAButton) {
  for (const int x : {10, 11, 12}) host_.move(x, 20);
  host_.press();
  for (const int x : {13, 14}) host_.move(x, 20);
  host_.release();
  poll_all(*window_);
  lines moves = frame_.log;
  std::erase_if(moves, [](const std::string& line) { return !line.starts_with("moved") && !line.starts_with("down"); });
  EXPECT_EQ(moves.back(), "moved 14,20 2");
  EXPECT_EQ(moves.at(moves.size() - 2), "down 12,20 2");
  EXPECT_LE(frame_.count("moved"), 3) << "one on entering, one before the press, one after";
}

TEST_F(X11Window, GivesPointsAtItsScale) {
  window_->resize(CPoint(200, 100), 2);
  poll_all(*window_);
  EXPECT_EQ(host_.attributes(host_.child()).width, 400);
  host_.click(300, 150);
  poll_all(*window_);
  EXPECT_TRUE(frame_.has("down 150,75 2"));
  EXPECT_EQ(window_->mouse_position(), CPoint(150, 75));
}

TEST_F(X11Window, TakesKeysAfterAPressAndPassesOnThoseThatItDoesNotHandle) {
  host_.click(10, 20);
  heard();
  EXPECT_EQ(focus(), host_.child());
  host_.type(XK_a);
  EXPECT_EQ(heard(), (lines{"key 97 0 0", "key up 97 0 0"}));
  EXPECT_TRUE(host_.got_key(KeyPress, XK_a));
  EXPECT_TRUE(host_.got_key(KeyRelease, XK_a));
  frame_.handles_keys = true;
  for (const KeySym key : {XK_Return, XK_KP_Enter, XK_Tab, XK_Escape, XK_Left, XK_Down, XK_Page_Up}) host_.type(key);
  host_.hold(XK_Shift_L, true);
  host_.type(XK_b);
  host_.hold(XK_Shift_L, false);
  lines keys = heard();
  std::erase_if(keys, [](const std::string& line) { return line.starts_with("key up"); });
  EXPECT_EQ(keys, (lines{"key 0 4 0", "key 0 19 0", "key 0 2 0", "key 0 6 0", "key 0 11 0", "key 0 14 0", "key 0 15 0",
                         "key 0 54 0", "key 66 0 1"}));
  EXPECT_FALSE(host_.got_key(KeyPress, XK_Return));
  host_.move(300, 150);
  heard();
  host_.click(10, 20);
  heard();
  window_.reset();
  EXPECT_EQ(focus(), static_cast<Window>(PointerRoot));
}

TEST_F(X11Window, LeavesTheFocusToAHostThatSpeaksXembed) {
  send_xembed(0, static_cast<long>(host_.window));
  send_xembed(4, 0);
  EXPECT_EQ(heard(), lines{"active"});
  host_.click(10, 20);
  heard();
  EXPECT_EQ(received_xembed(), 3) << "asks for the focus";
  EXPECT_EQ(focus(), static_cast<Window>(PointerRoot));
  host_.type(XK_Tab);
  heard();
  EXPECT_EQ(received_xembed(), 6) << "the next element";
  EXPECT_FALSE(host_.got_key(KeyPress, XK_Tab));
  send_xembed(10, 0);
  host_.click(10, 20);
  EXPECT_EQ(heard(), lines{}) << "a modal dialogue";
  send_xembed(11, 0);
  send_xembed(2, 0);
  EXPECT_EQ(heard(), lines{"inactive"});
}

TEST_F(X11Window, CancelsAPressWhoseReleaseWillNotCome) {
  host_.move(10, 20);
  host_.press();
  heard();
  XUnmapWindow(host_.display, host_.window);
  XSync(host_.display, False);
  EXPECT_EQ(heard(), (lines{"inactive", "cancelled"}));
  host_.release();
  XMapWindow(host_.display, host_.window);
  XSync(host_.display, False);
  heard();
  host_.press();
  heard();
  XDestroyWindow(host_.display, host_.window);
  XSync(host_.display, False);
  EXPECT_TRUE(poll_until(*window_, [&] { return frame_.has("cancelled"); }));
  host_.release();
}

TEST_F(X11Window, IsDeadButHarmlessOnceItsParentIsDestroyed) {
  XDestroyWindow(host_.display, host_.window);
  XSync(host_.display, False);
  expect_harmless();
}

TEST_F(X11Window, IsDeadButHarmlessOnceItsConnectionIsLost) {
  XKillClient(host_.display, host_.child());
  XSync(host_.display, False);
  expect_harmless();
}

TEST_F(X11Window, PaintsOnlyWhatIsInvalidAndShowsTheRestFromItsBuffer) {
  frame_.colour = kGreenCColor;
  window_->invalidate(CRect(10, 10, 30, 20));
  window_->invalidate(CRect(20, 15, 50, 40));
  window_->invalidate(CRect(100, 50, 110, 60));
  EXPECT_EQ(heard(), (lines{"paint 10,10,50,40", "paint 100,50,110,60"}));
  const Window cover = XCreateSimpleWindow(host_.display, host_.window, 0, 0, 400, 200, 0, 0, 0);
  XMapWindow(host_.display, cover);
  XSync(host_.display, False);
  EXPECT_EQ(heard(), lines{});
  XDestroyWindow(host_.display, cover);
  XSync(host_.display, False);
  EXPECT_EQ(heard(), lines{});
  EXPECT_EQ(host_.pixel(host_.child(), 5, 5), 0xFF0000U);
  EXPECT_EQ(host_.pixel(host_.child(), 105, 55), 0x00FF00U);
  XResizeWindow(host_.display, host_.child(), 300, 150);
  XSync(host_.display, False);
  heard();
  EXPECT_EQ(host_.pixel(host_.child(), 250, 120), host_.pixel(host_.child(), 250, 20)) << "filled beyond the frame";
  EXPECT_EQ(host_.pixel(host_.child(), 5, 5), 0xFF0000U);
}

TEST_F(X11Window, DoesNotPollWithinAnEvent) {
  frame_.on_down = [&] { window_->poll_events(); };
  host_.click(10, 20);
  host_.click(30, 20);
  const lines all = heard();
  EXPECT_LT(std::ranges::find(all, "up 10,20 2"), std::ranges::find(all, "down 30,20 2"));
}

TEST_F(X11Window, KeepsToItselfAmongOthers) {
  const host other_host;
  recorder other_frame;
  const std::unique_ptr<platform::window> other = other_host.open(other_frame);
  poll_all(*other);
  other_frame.log.clear();
  other_host.click(10, 20);  // it covers the first one
  poll_all(*other);
  EXPECT_TRUE(other_frame.has("down 10,20 2"));
  EXPECT_EQ(heard(), lines{});
  window_.reset();
  other_host.click(30, 20);
  poll_all(*other);
  EXPECT_TRUE(other_frame.has("down 30,20 2"));
}

int host_errors = 0;
int count_error(Display*, XErrorEvent*) {
  return ++host_errors;
}

TEST_F(X11Window, LeavesTheErrorsOfOthersToTheHost) {
  XErrorHandler const before = XSetErrorHandler(count_error);
  host_errors = 0;
  frame_.on_down = [&] {
    XMapWindow(host_.display, 0x1FFFFFFF);
    XSync(host_.display, False);
  };
  host_.click(10, 20);
  heard();
  EXPECT_EQ(host_errors, 1);
  XDestroyWindow(host_.display, host_.window);
  XSync(host_.display, False);
  window_.reset();
  EXPECT_EQ(host_errors, 1) << "our own";
  EXPECT_EQ(XSetErrorHandler(before), count_error);
}

TEST_F(X11Window, OpensOnScreensAndVisualsOfOtherDepths) {
  const host shallow(1);
  const std::unique_ptr<platform::window> on_shallow = shallow.open(frame_);
  ASSERT_NE(on_shallow, nullptr);
  poll_all(*on_shallow);
  EXPECT_EQ(shallow.pixel(shallow.child(), 5, 5), 0xF800U);

  XVisualInfo deep = {};
  ASSERT_NE(XMatchVisualInfo(host_.display, DefaultScreen(host_.display), 32, TrueColor, &deep), 0);
  XSetWindowAttributes values = {};
  values.colormap = XCreateColormap(host_.display, host_.window, deep.visual, AllocNone);
  const Window parent = XCreateWindow(host_.display, DefaultRootWindow(host_.display), 0, 0, 200, 100, 0, 32,
                                      InputOutput, deep.visual, CWColormap | CWBorderPixel, &values);
  XMapWindow(host_.display, parent);
  XSync(host_.display, False);
  const auto on_deep = platform::open_window(reinterpret_cast<void*>(parent), CPoint(50, 50), 1, frame_);
  ASSERT_NE(on_deep, nullptr);
  poll_all(*on_deep);
  EXPECT_EQ(host_.pixel(host_.children(parent).at(0), 5, 5), 0xFFFF0000U);
}

TEST_F(X11Window, IsRefusedWithoutAParentOrADisplay) {
  const auto open = [&](Window parent) {
    return platform::open_window(reinterpret_cast<void*>(parent), CPoint(50, 50), 1, frame_) != nullptr;
  };
  EXPECT_FALSE(open(0));
  EXPECT_FALSE(open(0x1FFFFFFF));
  EXPECT_FALSE(open(XCreateWindow(host_.display, host_.window, 0, 0, 9, 9, 0, 0, InputOnly, nullptr, 0, nullptr)));
  const std::string display = getenv("DISPLAY");
  setenv("DISPLAY", ":59999", 1);
  EXPECT_FALSE(open(host_.window));
  platform::show_message("Title", "Text");
  setenv("DISPLAY", display.c_str(), 1);
}

TEST_F(X11Window, LeavesNothingBehindWhenOpenedAndClosedAThousandTimes) {
  const auto open_files = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
  };
  const auto heap_bytes = [] { return static_cast<double>(mallinfo2().uordblks); };
  const auto cycle = [&] {
    const std::unique_ptr<platform::window> again = host_.open(frame_);
    ASSERT_NE(again, nullptr);
    again->poll_events();
    ASSERT_TRUE(again->open_menu({{{"One"}}, CRect(0, 0, 10, 10), -1}, [](int32_t) {}));
    again->poll_events();
    frame_.log.clear();
  };
  for (int i = 0; i < 20; ++i) cycle();
  const auto files = open_files();
  const double bytes = heap_bytes();
  for (int i = 0; i < 1000; ++i) cycle();
  EXPECT_EQ(open_files(), files);
  EXPECT_LT(heap_bytes() - bytes, 100 * 100.0) << "less than ten bytes each time";
  XSync(host_.display, False);
  EXPECT_EQ(host_.children(host_.window).size(), 1U);
  EXPECT_EQ(host_.menu(), 0U);
}

}  // namespace
}  // namespace x11_tests
