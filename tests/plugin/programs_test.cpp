// MIT License. Tests of the programs that the host sees.
#include <atomic>
#include <thread>

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
  // The name by its number, or "false".
  std::string name_of(VstInt32 index) {
    char text[kVstMaxProgNameLen + 1] = "untouched";
    return effect.getProgramNameIndexed(0, index, text) ? text : "false";
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

  // Restores one record into the program in use.
  void restore(const chunks::chunk& record) {
    const auto image = state::single_program_image({effect.getAeffect()->uniqueID, 1}, 0, record);
    effect.setChunk(const_cast<uint8_t*>(image->bytes()), static_cast<VstInt32>(image->size()), true);
  }
};

// A record of any version without keys.
chunks::chunk record_of(uint32_t version, const std::string& name, const std::string& uuid) {
  chunks::mutable_chunk record(state::program_chunk_id);
  record.write(version);
  record.append(chunks::string_chunk(0, name));
  record.append(chunks::string_chunk(1, uuid));
  for (int byte = 0; byte < 39; ++byte) record.write(uint8_t{0});
  return record;
}

TEST_F(Programs, AreTheBuiltInOnesBeforeTheHandshake) {
  EXPECT_EQ(effect.getAeffect()->numPrograms, 24);
  EXPECT_EQ(name(), "Detuned Sawtooth A");
  EXPECT_EQ(name_of(5), "Analog Pulse Pad C");
  EXPECT_EQ(name_of(18), "Dark Classic Ring-Mod A");
  effect.setProgram(23);
  EXPECT_EQ(name(), "Colorized Pulser C");
  EXPECT_EQ(effect.sound_uuid(), "quorvant.factory.Colorized_Pulser");
  EXPECT_THAT(held_keys(), ElementsAre(12, 16, 19));
  EXPECT_THAT(calls_of_block(), IsEmpty());
}

TEST_F(Programs, AreThoseOfTheDefaultBankAfterIt) {
  shake_hands();
  EXPECT_THAT(host.automated, ElementsAre(Pair(0, 0.0F), Pair(1, 0.0F), Pair(2, 1.0F)));
  EXPECT_EQ(name(), "Detuned Sawtooth A");
  EXPECT_EQ(name_of(23), "Colorized Pulser C");
  run_block();
  effect.setProgram(15);
  EXPECT_EQ(effect.sound_uuid(), "quorvant.factory.Retro_Speech_Synth_Style");
  EXPECT_EQ(effect.getParameter(k_chorus_on), 1.0F);
  // The octave switch is off again.
  EXPECT_THAT(calls_of_block(), ElementsAre("off 60 0", "off 64 0", "off 67 0",  //
                                            "on 48 127", "on 52 127", "on 55 127", "process"));
  EXPECT_EQ(recording.blocks.back().sound_number, 5);
  EXPECT_EQ(recording.blocks.back().chorus_on, 1);
  EXPECT_EQ(recording.blocks.back().reverb_on, 0);
}

TEST_F(Programs, KeepWhatWasDoneWhileTheyWereInUse) {
  shake_hands();
  set_name("Mine");
  hold_keys({0, 35, 36});  // the last one is no key of the keyboard
  effect.setParameter(k_reverb_on, 1.0F);
  effect.select_preset_by_index(k_ambient_indigo);
  effect.setProgram(3);
  EXPECT_EQ(name_of(0), "Mine");
  EXPECT_EQ(effect.getParameter(k_reverb_on), 0.0F);
  host.automated.clear();

  effect.setProgram(0);
  EXPECT_EQ(name(), "Mine");
  EXPECT_EQ(effect.sound_uuid(), "quorvant.deep_vocoders.Ambient_Indigo");
  EXPECT_THAT(held_keys(), ElementsAre(0, 35));
  EXPECT_THAT(host.automated, ElementsAre(Pair(0, 0.0F), Pair(1, 1.0F), Pair(2, 1.0F)));
}

TEST_F(Programs, AreNotReloadedWhenTheyAreInUse) {
  shake_hands();
  hold_keys({1});
  host.automated.clear();
  for (const VstInt32 program : {0, -1, 24, INT32_MAX, INT32_MIN}) effect.setProgram(program);
  EXPECT_THAT(held_keys(), ElementsAre(1));
  EXPECT_THAT(host.automated, IsEmpty());
  EXPECT_EQ(effect.getProgram(), 0);
}

TEST_F(Programs, AreNotChangedByAChoiceInTheMenu) {
  shake_hands();
  effect.setProgram(1);
  effect.select_preset_by_index(k_ambient_indigo);
  effect.setProgram(2);
  effect.select_preset_by_index(k_ambient_indigo);
  effect.setProgram(1);
  EXPECT_EQ(effect.sound_uuid(), "quorvant.deep_vocoders.Ambient_Indigo") << "kept when the program was left";
}

TEST_F(Programs, CutLongNamesOnlyWhereTheyAreListed) {
  shake_hands();
  const std::string longest(24, 'n');
  set_name(longest);
  EXPECT_EQ(name(), longest);
  set_name(longest + "x");
  EXPECT_EQ(name(), "") << "a name that does not fit is not cut";
  EXPECT_EQ(name_of(0), "");
  effect.setProgram(1);
  EXPECT_EQ(name_of(0), longest);
  set_name("");
  EXPECT_EQ(name_of(1), "");
  effect.setProgram(0);
  EXPECT_EQ(name_of(1), "false");
  EXPECT_EQ(name_of(-1), "false");
  EXPECT_EQ(name_of(24), "false");
}

TEST_F(Programs, OfAnEarlierVersionHaveNoOctave) {
  shake_hands();
  chunks::mutable_chunk old(state::program_chunk_id);
  old.write(uint32_t{1009});
  old.append(chunks::string_chunk(0, "old"));
  old.append(chunks::string_chunk(1, "QUORVANT.factory.COLORIZED_pulser"));
  for (int byte = 0; byte < 38; ++byte) old.write(uint8_t{2});
  restore(old);
  EXPECT_EQ(effect.getParameter(k_chorus_on), 1.0F);
  EXPECT_EQ(effect.getParameter(k_octave_on), 0.0F);
  EXPECT_EQ(held_keys().size(), 36U);
  run_block();
  EXPECT_EQ(recording.blocks.back().sound_number, 7) << "the case of a uuid does not matter";
}

TEST_F(Programs, OfALaterVersionLeaveTheLiveStateAlone) {
  shake_hands();
  restore(record_of(1011, "future", "quorvant.factory.Colorized_Pulser"));
  EXPECT_EQ(name(), "Detuned Sawtooth A");
  EXPECT_EQ(effect.sound_uuid(), "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder");
  EXPECT_EQ(held_keys().size(), 3U);
}

TEST_F(Programs, KeepTheNameOfASoundThatIsUnknown) {
  shake_hands();
  restore(record_of(1010, "stranger", "elsewhere.sound"));
  EXPECT_EQ(effect.sound_uuid(), "elsewhere.sound");
  expect_dry(run_block());
  effect.setProgram(1);
  effect.setProgram(0);
  EXPECT_EQ(effect.sound_uuid(), "elsewhere.sound");
}

TEST_F(Programs, OfAClosedCategoryAreRestoredAndRefusedAtTheBlock) {
  shake_hands();
  gate.refused_category = 10002;
  const log_capture log;
  restore(record_of(1010, "closed", "quorvant.deep_vocoders.Ambient_Indigo"));
  EXPECT_EQ(name(), "closed");
  expect_dry(run_block());
  EXPECT_EQ(log.text(), "soundpack not activated yet!\n");
}

// Whichever allocation fails, the host gets its call back and the reason is in the log.
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
    if (failed) {
      EXPECT_THAT(log.text(), testing::EndsWith(" failed\nstd::bad_alloc\n")) << failures;
    }
    if (failures == 0) {
      EXPECT_EQ(effect.getProgram(), 0) << "a program that can't be kept isn't left";
    }
    effect.setProgram(0);
    set_name(longest);
  }
  EXPECT_GT(failures, 5);

  const log_capture log;
  {
    std::string other(24, 'o');
    const failing_allocation heap(0);
    effect.setProgramName(other.data());
  }
  {
    char text[kVstMaxProgNameLen + 1] = "untouched";
    const failing_allocation heap(0);
    effect.getProgramName(text);
    EXPECT_STREQ(text, "");
  }
  EXPECT_EQ(log.text(), "setProgramName failed\nstd::bad_alloc\ngetProgramName failed\nstd::bad_alloc\n");
  EXPECT_EQ(name(), longest);
}

TEST_F(Programs, WithoutTheirTextsAreReported) {
  shake_hands();
  chunks::mutable_chunk broken(state::program_chunk_id);
  broken.write(uint32_t{1010});
  const log_capture log;
  restore(broken);
  EXPECT_EQ(name(), "Detuned Sawtooth A");
  EXPECT_EQ(log.text(),
            "execute_chunk_to_current_program failed\n"
            "basic_chunk_input_stream: chunk not valid or no chunk at all!\n");
  effect.setProgram(1);  // writes the live state back over it
  EXPECT_EQ(name_of(0), "Detuned Sawtooth A");
}

}  // namespace
