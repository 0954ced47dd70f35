// MIT License. Tests of the effect object in front of an engine that only records.
#include "plugin/effect.h"

#include <algorithm>

#include "tests/plugin/effect_fixture.h"
#include "tests/plugin/own_log.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST_F(Effect, IsSilentUntilTheHandshakeAndThenSingsTheDefaultBanksFirstProgram) {
  for (const auto& [index, value] : {std::pair(handshake_id, 0), {handshake_id, 2}, {handshake_id + 1, 1}}) {
    EXPECT_EQ(effect.vendorSpecific(index, value, nullptr, 0.0F), 0);
  }
  const stereo_block block = run_block();
  EXPECT_THAT(block.out_left, Each(0.0F));
  EXPECT_THAT(block.out_right, Each(0.0F));
  effect.select_preset_by_index(first_sound);  // there is no such row yet
  EXPECT_EQ(effect.getAeffect()->flags & effFlagsHasEditor, 0);

  shake_hands();
  EXPECT_NE(effect.getAeffect()->flags & effFlagsHasEditor, 0);
  EXPECT_THAT(calls_of_block(), ElementsAre("on 60 127", "on 64 127", "on 67 127", "process"));
  EXPECT_EQ(recording.blocks.at(0).sound_number, 0);
}

TEST_F(Effect, GivesTheEngineAKeyOnlyInTheBlockOfASwitch) {
  start_without_sound();
  expect_dry(run_block());
  effect.setParameter(parameter_chorus_on, 1.0F);
  effect.select_preset_by_index(first_sound);
  effect.select_preset_by_index(first_electronica_sound);
  stereo_block block = run_block(5);
  expect_processed(block);
  run_block(0);

  ASSERT_EQ(recording.blocks.size(), 2U);
  const auto& [curve, chorus_on, reverb_on, sound_number, key, frames, inputs] = recording.blocks[0];
  EXPECT_THAT((std::array{curve, chorus_on, reverb_on, sound_number, frames}), ElementsAre(0, 1, 0, 8, 5));
  EXPECT_THAT(inputs, ElementsAre(block.inputs[0], block.inputs[1], nullptr, nullptr));
  EXPECT_NE(key, "");
  EXPECT_EQ(recording.blocks[1].sound_key, "");
  EXPECT_EQ(recording.blocks[1].frames, 0);

  gate.has_token = false;
  effect.select_preset_by_index(first_sound);
  run_block();
  EXPECT_EQ(recording.blocks[2].sound_key, "");
}

TEST_F(Effect, TakesRowsWithoutASoundAndIgnoresPositionsOutsideTheMenu) {
  start_without_sound();
  effect.select_preset_by_index(first_sound);
  run_block();
  for (const int32_t row : {-1, 67, INT32_MAX, INT32_MIN}) effect.select_preset_by_index(row);
  EXPECT_THAT(calls_of_block(), ElementsAre("process"));
  EXPECT_EQ(effect.sound_uuid(), "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder");

  const log_capture log;
  effect.select_preset_by_index(first_title);
  expect_dry(run_block());
  EXPECT_EQ(effect.sound_uuid(), "");
  EXPECT_EQ(log.text(), "");
}

TEST_F(Effect, AsksTheGateForEachChoiceAndEachSwitch) {
  start_without_sound();
  effect.select_preset_by_index(first_sound);
  gate.refused_category = 10001;
  effect.select_preset_by_index(first_electronica_sound);
  EXPECT_EQ(effect.sound_uuid(), "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder");
  EXPECT_TRUE(effect.getCategories()[0]->activated);
  EXPECT_FALSE(effect.getCategories()[1]->activated);
  expect_processed(run_block());

  gate.refused_category = 0;
  effect.select_preset_by_index(first_electronica_sound);
  gate.refused_category = 10001;
  const log_capture log;
  expect_dry(run_block());
  expect_dry(run_block());
  EXPECT_EQ(log.text(), "soundpack not activated yet!\n");
}

TEST_F(Effect, MovesTheKeysWithTheSoundAndTheOctaveSwitch) {
  start_without_sound();
  effect.select_preset_by_index(first_sound);
  run_block();

  effect.setParameter(parameter_octave_on, 1.0F);
  EXPECT_THAT(calls_of_block(), ElementsAre("off 48 0", "off 52 0", "off 55 0",  //
                                            "on 60 127", "on 64 127", "on 67 127", "process"));
  hold_keys({0, 12});
  run_block();
  effect.select_preset_by_index(ambient_indigo);
  EXPECT_THAT(calls_of_block(), ElementsAre("off 48 0", "off 60 0", "on 72 127", "on 84 127", "process"));

  effect.select_preset_by_index(0);  // without a sound the octave switch has no effect
  EXPECT_THAT(calls_of_block(), ElementsAre("off 72 0", "off 84 0", "on 36 127", "on 48 127"));
  EXPECT_THAT(calls_of_block(), IsEmpty());

  key_flags all_keys;
  std::ranges::fill(all_keys, uint8_t{0xFF});
  effect.set_pending_keys(all_keys);
  EXPECT_EQ(calls_of_block().size(), 34U) << "none beyond the keyboard, and none that sounds already";
  effect.select_preset_by_index(first_sound);
  const std::vector<std::string> moved = calls_of_block();
  ASSERT_EQ(moved.size(), 25U);
  EXPECT_EQ(moved[0] + moved[11] + moved[12] + moved[23], "off 36 0off 47 0on 72 127on 83 127");
}

TEST_F(Effect, StrikesHeldKeysAgainAtANewRateAndIsProcessedOnceAnotherSoundIsChosen) {
  start_without_sound();
  effect.select_preset_by_index(ambient_indigo);
  calls_of_block();
  effect.setSampleRate(48000.0F);
  EXPECT_EQ(effect.getSampleRate(), 48000.0F);
  EXPECT_THAT(recording.take_calls(), ElementsAre("destroy", "create 48000"));
  EXPECT_THAT(calls_of_block(), ElementsAre("on 72 127", "on 76 127", "on 79 127", "process"));

  effect.select_preset_by_index(ambient_indigo);
  EXPECT_THAT(run_block().out_right, Each(9.0F)) << "left unwritten: the new engine has no sound yet";
  effect.select_preset_by_index(first_sound);
  expect_processed(run_block());
}

TEST_F(Effect, SwitchesAParameterOnAtExactlyOneAndReportsOnlyTheEditorsChangesToTheHost) {
  start_without_sound();
  effect.select_preset_by_index(first_sound);
  for (const float value : {0.7F, 1.0F}) {
    effect.setParameter(parameter_reverb_on, value);
    run_block();
    EXPECT_EQ(recording.blocks.back().reverb_on, value == 1.0F);
  }
  EXPECT_EQ(recording.blocks.back().chorus_on, 0);
  EXPECT_THAT(host.automated, IsEmpty());

  for (const VstInt32 index : {2, 3, -1}) effect.setParameterAutomated(index, 1.0F);
  EXPECT_THAT(host.automated, ElementsAre(Pair(2, 1.0F)));
  effect.lose_host();
  effect.setParameterAutomated(parameter_chorus_on, 1.0F);
  EXPECT_EQ(effect.getParameter(parameter_chorus_on), 1.0F);
  EXPECT_EQ(host.automated.size(), 1U);
}

TEST_F(Effect, TakesMonoAndStereoAndMissesASecondInput) {
  const auto arrange = [this](VstInt32 in, VstInt32 out) {
    VstSpeakerArrangement input{}, output{};
    input.numChannels = in;
    output.numChannels = out;
    return effect.setSpeakerArrangement(&input, &output);
  };
  start_without_sound();
  stereo_block block(4);
  float* first_alone[] = {block.left.data(), nullptr};
  for (const VstInt32 channels : {1, 2}) {
    EXPECT_TRUE(arrange(channels, 3 - channels));
    EXPECT_FALSE(arrange(3, 2) || arrange(2 / channels, 3)) << "refused, it changes nothing";
    EXPECT_TRUE(effect.setSpeakerArrangement(nullptr, nullptr));
    const log_capture log;
    effect.select_preset_by_index(0);
    block.run_with(first_alone, effect.getAeffect());
    EXPECT_EQ(block.out_left, block.left);
    EXPECT_EQ(block.out_right, channels == 1 ? block.left : std::vector<float>(4, 0.0F));
    effect.select_preset_by_index(first_sound);
    block.run_with(first_alone, effect.getAeffect());
    const float* const second = channels == 1 ? first_alone[0] : nullptr;
    EXPECT_THAT(recording.blocks.back().inputs, ElementsAre(first_alone[0], second, nullptr, nullptr));
    const std::string line = "stereo input setup but no second input data channel on process!\n";
    EXPECT_EQ(log.text(), channels == 1 ? "" : line + line);
  }
}

TEST_F(Effect, DoesWithoutMissingChannels) {
  stereo_block block(4);
  float* const none[] = {nullptr, nullptr};
  float* const left_only[] = {block.out_left.data(), nullptr};
  float* const right_only[] = {nullptr, block.out_right.data()};
  float* const voice[] = {block.left.data(), block.right.data()};
  const auto run = [&](float* const* inputs) {
    for (float* const* const outputs : {left_only, right_only, none, static_cast<float* const*>(nullptr)}) {
      effect.processReplacing(const_cast<float**>(inputs), const_cast<float**>(outputs), block.frames);
    }
  };
  run(voice);
  EXPECT_THAT(block.out_left, Each(0.0F));
  EXPECT_THAT(block.out_right, Each(0.0F));
  start_without_sound();
  run(voice);
  expect_dry(block);
  run(none);
  EXPECT_THAT(block.out_left, Each(0.0F));
  EXPECT_THAT(block.out_right, Each(0.0F));
  run(nullptr);

  float* const exchanged[] = {block.right.data(), block.left.data()};
  effect.processReplacing(const_cast<float**>(voice), const_cast<float**>(exchanged), block.frames);
  EXPECT_EQ(block.right, stereo_block(4).left) << "in place";
  EXPECT_EQ(block.left, stereo_block(4).right);
}

}  // namespace
