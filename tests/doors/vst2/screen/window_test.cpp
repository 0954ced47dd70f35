// MIT License. A test of the window that the built module opens in a host's, with a user's hand in it.
#include <gmock/gmock.h>

#include <chrono>
#include <functional>
#include <thread>

#include "tests/doors/vst2/hosted_module.h"
#include "tests/editor/screen/host_window.h"

namespace {

using testing::ElementsAre;
using testing::Pair;

TEST(AnyHostWindow, ReportsSwitchesAndSoundsAndShowsNotes) {
  test_host host;
  const hosted_module module(KESREL_ANY_HOST_MODULE);
  const screen_tests::host_window parent;
  const auto idle = [&] { module.ask(effEditIdle); };
  const auto idle_until = [&](const std::function<bool()>& condition) {
    for (int tries = 0; tries < 1000 && !condition(); ++tries) {
      parent.handle_events();
      idle();
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
  };
  idle();  // before it is open
  ASSERT_EQ(module.ask(effEditOpen, 0, 0, parent.handle()), 1);
  module.ask(effMainsChanged, 0, 1);

  parent.click(95, 84);  // the chorus switch
  EXPECT_TRUE(idle_until([&] { return host.edits == "begin 0 end 0 "; }));
  EXPECT_EQ(host.updates, 0);
  module.ask(effSetProgram, 0, 12);
  ASSERT_TRUE(parent.choose_first(287, 83, idle));  // of the sound menu
  EXPECT_TRUE(idle_until([&] { return host.updates == 1; }));
  EXPECT_THAT(host.automated, ElementsAre(Pair(0, 1.0F)));

  ASSERT_TRUE(idle_until([&] { return !parent.has_open_menu(); }));
  const auto keyboard = [&] { return parent.row_of_child(190, 30, 390); };
  const auto before = keyboard();
  module.send({{0, "\x90\x30\x64"}});
  module.sing(std::vector<float>(2048));
  EXPECT_TRUE(idle_until([&] { return keyboard() != before; }));
  module.ask(effEditClose);
  EXPECT_FALSE(parent.has_child());
}

}  // namespace
