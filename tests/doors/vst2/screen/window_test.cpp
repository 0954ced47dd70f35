// MIT License. Tests of the window that the built module opens in a host's, with a user's hand in it.
#include <chrono>
#include <functional>
#include <thread>

#include "tests/doors/vst2/host_words.h"
#include "tests/editor/screen/host_window.h"

namespace {

using any_host_tests::heard;
using screen_tests::host_window;

TEST(AnyHostWindow, ReportsSwitchesAndSoundsAndShowsNotes) {
  const any_host_tests::hosted effect(KESREL_ANY_HOST_MODULE);
  heard = {};
  const host_window parent;
  const auto idle = [&] { effect.call(effEditIdle); };
  const auto idle_until = [&](const std::function<bool()>& condition) {
    for (int tries = 0; tries < 1000; ++tries) {
      parent.handle_events();
      idle();
      if (condition()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  };
  idle();  // before it is open
  ASSERT_EQ(effect.call(effEditOpen, 0, 0, parent.handle()), 1);
  ERect* area = nullptr;
  ASSERT_EQ(effect.call(effEditGetRect, 0, 0, &area), 1);
  EXPECT_EQ(area->bottom, 250);

  parent.click(95, 84);  // the chorus switch
  EXPECT_TRUE(idle_until([] { return heard.edits == "begin 0, 0 is 1, end 0, "; })) << heard.edits;
  EXPECT_EQ(effect.text(effGetParamDisplay, 0), "On");
  EXPECT_EQ(heard.updates, 0);

  effect.start();
  effect.call(effSetProgram, 0, 12);
  ASSERT_TRUE(parent.choose_first(287, 83, idle));  // of the sound menu
  EXPECT_TRUE(idle_until([] { return heard.updates == 1; }));
  EXPECT_EQ(heard.edits, "begin 0, 0 is 1, end 0, ");

  const auto keyboard = [&] { return parent.row_of_child(190, 30, 390); };
  ASSERT_TRUE(idle_until([&] { return !parent.has_open_menu(); }));
  idle();
  const auto before = keyboard();
  effect.send({{0, {0x90, 48, 100}}});
  effect.sing(std::vector<float>(2048), 1024);
  EXPECT_TRUE(idle_until([&] { return keyboard() != before; }));
  effect.call(effEditClose);
  EXPECT_FALSE(parent.has_child());
}

}  // namespace
