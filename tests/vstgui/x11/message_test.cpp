// MIT License. Tests of the message box.
#include <gtest/gtest.h>

#include <thread>

#include "tests/vstgui/x11/x11_host.h"
#include "vstgui/message_text.h"

namespace x11_tests {
namespace {

TEST(X11Message, StaysUntilTheUserOrTheWindowManagerClosesIt) {
  const host host;
  Window box = 0;
  XWindowAttributes place = {};
  const auto finds_box = [&] {
    box = host.find_on_root([](const XWindowAttributes& window) { return window.map_state == IsViewable; });
    return box != 0;
  };
  const std::function<void()> ways[] = {
      [&] {
        host.type(XK_a);  // does nothing
        host.type(XK_Escape);
      },
      [&] {
        host.click(place.x - 190, place.y - 290);  // beside the button
        host.click(place.x - 200 + place.width - 100, place.y - 300 + place.height - 60);
      },
      [&] {
        host.send(box, "WM_PROTOCOLS", {static_cast<long>(XInternAtom(host.display, "WM_DELETE_WINDOW", False))});
      },
      [&] { host.sync(XKillClient(host.display, box)); },
  };
  for (const auto& close : ways) {
    std::thread caller([] { platform::show_message("Title", "One\tTwo\r\nThree", 2); });
    ASSERT_TRUE(wait_until(finds_box));
    place = host.attributes(box);
    ASSERT_TRUE(wait_until([&] { return host.has_focus(box); }));
    close();
    caller.join();
    EXPECT_TRUE(wait_until([&] { return !finds_box(); }));
  }
}

// Ten pixels a character.
class even_font : public platform::font {
 public:
  CCoord cap_height() const override { return 8; }
  CCoord width(const std::string& text) const override { return 10.0 * static_cast<double>(text.size()); }
};

TEST(MessageText, HasTabStopsAndBreaksLinesAtBlanks) {
  const auto laid_out = platform::lay_out("A:\tbc\r\nlong one two\r\n\r\nend\r\n\r\n", even_font(), 100);
  std::string runs;
  for (const auto& run : laid_out.runs)
    runs += run.text + " " + std::to_string(std::lround(run.baseline.x)) + " " +
            std::to_string(std::lround(run.baseline.y)) + "; ";
  EXPECT_EQ(runs, "A: 0 14; bc 64 14; long one 0 33; two 0 52; end 0 90; ");
  EXPECT_EQ(laid_out.size, CPoint(84, 95));
}

}  // namespace
}  // namespace x11_tests
