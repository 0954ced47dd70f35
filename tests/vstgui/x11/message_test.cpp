// MIT License. Tests of the message box.
#include <gtest/gtest.h>

#include <X11/extensions/XTest.h>

#include <algorithm>
#include <chrono>
#include <thread>

#include "tests/vstgui/x11/x11_host.h"
#include "vstgui/message_text.h"

namespace x11_tests {
namespace {

using namespace VSTGUI;

Window find_box_now(const host& host) {
  return host.find_on_root([](const XWindowAttributes& window) { return window.map_state == IsViewable; });
}

// Waits for it.
Window find_box(const host& host) {
  Window found = 0;
  for (const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(10);
       found == 0 && std::chrono::steady_clock::now() < deadline;
       std::this_thread::sleep_for(std::chrono::milliseconds(1)))
    found = find_box_now(host);
  return found;
}

bool has_focus(const host& host, Window window) {
  Window holder = 0;
  int revert_to = 0;
  XGetInputFocus(host.display, &holder, &revert_to);
  return holder == window;
}

TEST(X11Message, StaysUntilTheUserOrTheWindowManagerClosesIt) {
  const host host;
  enum class way { key, button, close_box, kill };
  for (const way closing : {way::key, way::button, way::close_box, way::kill}) {
    std::thread caller([] { platform::show_message("Title", "One\tTwo\r\nThree", 2); });
    const Window box = find_box(host);
    ASSERT_NE(box, 0U);
    const XWindowAttributes place = host.attributes(box);
    XEvent event = {};
    switch (closing) {
      case way::key:
        while (!has_focus(host, box)) std::this_thread::sleep_for(std::chrono::milliseconds(1));
        host.type(XK_a);  // not one of those that close it
        host.type(XK_Escape);
        break;
      case way::button:
        host.click(place.x - 200 + 10, place.y - 300 + 10);  // beside it
        host.click(place.x - 200 + place.width - 100, place.y - 300 + place.height - 60);
        break;
      case way::close_box:
        event.xclient.type = ClientMessage;
        event.xclient.window = box;
        event.xclient.message_type = XInternAtom(host.display, "WM_PROTOCOLS", False);
        event.xclient.format = 32;
        event.xclient.data.l[0] = static_cast<long>(XInternAtom(host.display, "WM_DELETE_WINDOW", False));
        XSendEvent(host.display, box, False, NoEventMask, &event);
        break;
      case way::kill:
        XKillClient(host.display, box);
        break;
    }
    XSync(host.display, False);
    caller.join();
    // The server notices that its connection is closed a little later.
    while (find_box_now(host) == box) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

// Ten pixels a character.
class even_font : public platform::font {
 public:
  CCoord cap_height() const override { return 8; }
  CCoord width(const std::string& text) const override { return 10.0 * static_cast<double>(text.size()); }
};

TEST(MessageText, HasTabStopsAndBreaksLinesAtBlanks) {
  const platform::message_text laid_out =
      platform::lay_out("A:\tbc\r\nlong one two\r\n\r\nend\r\n\r\n", even_font(), 100);
  std::vector<std::string> runs;
  for (const auto& run : laid_out.runs)
    runs.push_back(run.text + " " + std::to_string(static_cast<int>(run.baseline.x)) + " " +
                   std::to_string(static_cast<int>(run.baseline.y - laid_out.runs[0].baseline.y) / 19));
  EXPECT_EQ(runs, (std::vector<std::string>{"A: 0 0", "bc 64 0", "long one 0 1", "two 0 2", "end 0 4"}));
  EXPECT_EQ(laid_out.size, CPoint(84, 5 * 19));
}

}  // namespace
}  // namespace x11_tests
