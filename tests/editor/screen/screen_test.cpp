// MIT License. Tests of the editor in a real window: mouse and keys from the display, and what comes of them.
#include <gmock/gmock.h>

#include <chrono>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

#include "plugin/effect.h"
#include "tests/editor/screen/host_window.h"
#include "tests/plugin/test_host.h"

namespace {

using screen_tests::host_window;
using testing::ElementsAre;
using testing::Pair;

// Places in the window that the host's smaller one shows, too.
struct place {
  int x, y;
};
constexpr place chorus = {95, 84};
constexpr place all_off = {32, 123};
constexpr place sound_menu = {287, 83};
constexpr place c2 = {213, 195};        // key 12
constexpr place c_sharp2 = {225, 150};  // key 13
constexpr place g_sharp2 = {325, 150};  // key 20

VstIntPtr call(AudioEffect& effect, VstInt32 opcode, void* pointer = nullptr) {
  AEffect* const record = effect.getAeffect();
  return record->dispatcher(record, opcode, 0, 0, pointer, 0.0F);
}

bool open_in(const host_window& parent, AudioEffect& effect) {
  return call(effect, effEditOpen, parent.handle()) == 1;
}

class Screen : public testing::Test {
 protected:
  Screen() {
    effect.vendorSpecific(handshake_id, 1, nullptr, 0.0F);
    effect.setParameter(parameter_octave_on, 0.0F);
    host.automated.clear();
    EXPECT_TRUE(open_in(parent, effect));
  }
  ~Screen() override { call(effect, effEditClose); }

  // Calls the editor's idle as a host does, until the condition holds; false when it doesn't for ten seconds.
  bool idle_until(const std::function<bool()>& condition) {
    for (int tries = 0; tries < 1000; ++tries) {
      parent.handle_events();
      call(effect, effEditIdle);
      if (condition()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return false;
  }

  // All that the hand has done by now has reached the effect when a click on the chorus switch has.
  void settle() {
    const size_t before = host.automated.size();
    parent.click(chorus.x, chorus.y);
    ASSERT_TRUE(idle_until([&] { return host.automated.size() > before; }));
  }
  std::vector<int> held() {
    settle();
    key_flags keys;
    effect.getPendingKeys(keys);
    std::vector<int> result;
    for (int number = 0; number < key_count; ++number) {
      if (keys[number] != 0) result.push_back(number);
    }
    return result;
  }

  test_host host;
  built_in_activation_gate gate;
  KesrelVocoder4TarvixEffect effect{&test_host::callback, gate};
  host_window parent;
};

TEST_F(Screen, LatchesKeysByTheMouse) {
  parent.click(all_off.x, all_off.y);
  EXPECT_THAT(held(), ElementsAre());
  parent.move(c_sharp2.x, c_sharp2.y);
  parent.press();
  parent.move(g_sharp2.x, g_sharp2.y);
  parent.release();
  EXPECT_THAT(held(), ElementsAre(13));
  parent.move(g_sharp2.x, g_sharp2.y);
  parent.press();
  parent.move(g_sharp2.x, -20);  // out of the window
  parent.release();
  parent.right_click(c2.x, c2.y);
  EXPECT_THAT(held(), ElementsAre(13));
  parent.click(c2.x, c2.y);
  EXPECT_THAT(held(), ElementsAre(12, 13));
  parent.click(all_off.x, all_off.y);
  EXPECT_THAT(held(), ElementsAre());
}

TEST_F(Screen, SendsSwitchesAsAutomationFromMouseAndKeyboard) {
  parent.click(chorus.x, chorus.y);
  ASSERT_TRUE(idle_until([&] { return host.automated.size() == 1; }));
  parent.press_return();  // on the switch that has the focus since the click
  ASSERT_TRUE(idle_until([&] { return host.automated.size() == 2; }));
  EXPECT_THAT(host.automated, ElementsAre(Pair(0, 1.0F), Pair(0, 0.0F)));
}

TEST_F(Screen, SingsTheSoundChosenFromTheMenuAtTheNextBlockAndShowsIt) {
  effect.select_preset_by_index(0);  // a separator: the voice goes through
  stereo_block block(64);
  block.run(effect.getAeffect());
  ASSERT_EQ(block.out_left, block.left);
  const auto look = [&] { return parent.row_of_child(84, 160, 390); };
  ASSERT_TRUE(parent.choose_first(sound_menu.x, sound_menu.y, [&] { call(effect, effEditIdle); }));
  ASSERT_TRUE(idle_until([&] { return effect.sound_uuid() == "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder"; }));
  block.run(effect.getAeffect());
  EXPECT_NE(block.out_left, block.left);
  ASSERT_TRUE(idle_until([&] { return !parent.has_open_menu(); }));
  const auto chosen = look();
  effect.select_preset_by_index(66);
  EXPECT_TRUE(idle_until([&] { return look() != chosen; }));
}

TEST_F(Screen, SurvivesTheEndOfItsHostsWindow) {
  auto other_parent = std::make_unique<host_window>();
  KesrelVocoder4TarvixEffect other(&test_host::callback, gate);
  other.vendorSpecific(handshake_id, 1, nullptr, 0.0F);
  ASSERT_TRUE(open_in(*other_parent, other));
  other_parent.reset();
  for (int calls = 0; calls < 5; ++calls) call(other, effEditIdle);
  call(other, effEditClose);
  {
    const host_window third;
    EXPECT_TRUE(open_in(third, other));
    EXPECT_TRUE(third.has_child());
    EXPECT_FALSE(call(other, effEditOpen) == 1);  // no parent
  }
  EXPECT_THAT(held(), testing::SizeIs(3));  // the first effect's window works on
}

}  // namespace
