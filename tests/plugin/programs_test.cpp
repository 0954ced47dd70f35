// MIT License. Tests of the programs that the host sees.
#include "tests/plugin/effect_fixture.h"
#include "tests/plugin/own_log.h"
#include "tests/words/heap.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class Programs : public Effect {
 protected:
  std::string name() {
    char text[kVstMaxProgNameLen + 1];
    effect.getProgramName(text);
    return text;
  }
  void set_name(std::string text) { effect.setProgramName(text.data()); }
  std::vector<size_t> held_keys() {
    key_flags keys;
    effect.getPendingKeys(keys);
    std::vector<size_t> held;
    for (size_t key = 0; key < std::size(keys); ++key) {
      if (keys[key] != 0) held.push_back(key);
    }
    return held;
  }
};

TEST_F(Programs, AreTheBuiltInOnesBeforeTheHandshake) {
  EXPECT_EQ(name(), "Detuned Sawtooth A");
  EXPECT_EQ(effect.sound_uuid(), "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder");
  EXPECT_THAT(held_keys(), ElementsAre(12, 16, 19));
  hold_keys({});
  effect.setProgram(23);
  EXPECT_EQ(effect.sound_uuid(), "quorvant.factory.Colorized_Pulser");
  EXPECT_THAT(held_keys(), ElementsAre(12, 16, 19));
}

TEST_F(Programs, AreThoseOfTheDefaultBankAndKeepWhatWasDoneWhileTheyWereInUse) {
  shake_hands();
  EXPECT_THAT(host.automated, ElementsAre(Pair(0, 0.0F), Pair(1, 0.0F), Pair(2, 1.0F)));
  EXPECT_TRUE(effect.getCategories()[0]->activated);
  set_name("Mine");
  hold_keys({0, 35, 36});  // the last one is no key of the keyboard
  effect.setParameter(parameter_reverb_on, 1.0F);
  effect.select_preset_by_index(ambient_indigo);
  host.automated.clear();
  for (const VstInt32 no_change : {0, -1, 24, INT32_MAX, INT32_MIN}) effect.setProgram(no_change);
  EXPECT_EQ(effect.getProgram(), 0);
  EXPECT_THAT(host.automated, IsEmpty());

  run_block();
  effect.setProgram(15);  // its octave switch is off
  EXPECT_EQ(effect.getParameter(parameter_reverb_on), 0.0F);
  EXPECT_THAT(calls_of_block(), ElementsAre("off 72 0", "off 107 0", "on 48 127", "on 52 127", "on 55 127", "process"));
  EXPECT_EQ(recording.blocks.back().sound_number, 5);
  EXPECT_EQ(recording.blocks.back().chorus_on, 1);
  EXPECT_EQ(name_of(0), "Mine");
  host.automated.clear();
  effect.setProgram(0);
  EXPECT_EQ(name(), "Mine");
  EXPECT_EQ(effect.sound_uuid(), "quorvant.deep_vocoders.Ambient_Indigo");
  EXPECT_THAT(held_keys(), ElementsAre(0, 35));
  EXPECT_THAT(host.automated, ElementsAre(Pair(0, 0.0F), Pair(1, 1.0F), Pair(2, 1.0F)));
}

TEST_F(Programs, CutLongNamesOnlyWhereTheyAreListed) {
  shake_hands();
  const std::string longest(24, 'n');
  set_name(longest);
  EXPECT_EQ(name(), longest);
  set_name(longest + "x");
  EXPECT_EQ(name(), "") << "a name that doesn't fit isn't cut";
  EXPECT_EQ(name_of(0), "");
  effect.setProgram(1);
  EXPECT_EQ(name_of(0), longest);
  set_name("");
  EXPECT_EQ(name_of(1), "");
  effect.setProgram(0);
  for (const VstInt32 without_name : {1, -1, 24}) EXPECT_EQ(name_of(without_name), "false");
}

// Whichever allocation fails, the host's call returns and the reason is in the log.
TEST_F(Programs, SurviveAHeapThatRunsOut) {
  shake_hands();
  const std::string longest(24, 'n');
  set_name(longest);
  int64_t failures = 0;
  for (bool failed = true; failed; ++failures) {
    const log_capture log;
    {
      const failing_allocation heap(failures);
      effect.setProgram(1);
      failed = heap.has_failed();
    }
    EXPECT_EQ(log.text().ends_with(" failed\nstd::bad_alloc\n"), failed) << failures;
    EXPECT_TRUE(failures > 0 || effect.getProgram() == 0) << "a program that can't be saved isn't left";
    effect.setProgram(0);
    set_name(longest);
  }
  EXPECT_GT(failures, 5);

  const log_capture log;
  std::string other(24, 'o');
  char text[kVstMaxProgNameLen + 1] = "untouched";
  for (const bool writing : {true, false}) {
    const failing_allocation heap(0);
    writing ? effect.setProgramName(other.data()) : effect.getProgramName(text);
  }
  EXPECT_STREQ(text, "");
  EXPECT_EQ(log.text(), "setProgramName failed\nstd::bad_alloc\ngetProgramName failed\nstd::bad_alloc\n");
  EXPECT_EQ(name(), longest);
}

}  // namespace
