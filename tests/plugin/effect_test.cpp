// MIT License. Tests of the effect object in front of an engine that only records.
#include "plugin/effect.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include "support/err/exception.h"
#include "tests/plugin/effect_fixture.h"
#include "tests/plugin/own_log.h"
#include "tests/words/heap.h"

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

TEST_F(Effect, RefusesAHostOfTheFirstVersion) {
  for (const VstIntPtr version : {0, 1}) {
    test_host old_host(version);
    EXPECT_THROW(KesrelVocoder4TarvixEffect(&test_host::callback, gate), err::runtime_error);
  }
  test_host second_version(2);
  EXPECT_NO_THROW(KesrelVocoder4TarvixEffect(&test_host::callback, gate));
}

TEST_F(Effect, OwnsOneEngineFromConstructionToItsEnd) {
  recording.calls.clear();
  { KesrelVocoder4TarvixEffect short_lived(&test_host::callback, gate); }
  EXPECT_THAT(recording.take_calls(), ElementsAre("create 44100", "destroy"));
}

TEST_F(Effect, IsSilentUntilTheHandshakeAndThenSingsTheDefaultBanksFirstProgram) {
  const stereo_block block = run_block();
  EXPECT_THAT(block.out_left, Each(0.0F));
  EXPECT_THAT(block.out_right, Each(0.0F));
  EXPECT_THAT(effect.getMenuRows(), IsEmpty());
  effect.select_preset_by_index(k_first_sound);  // there is no such row yet

  shake_hands();
  EXPECT_THAT(calls_of_block(), ElementsAre("on 60 127", "on 64 127", "on 67 127", "process"));
  EXPECT_EQ(recording.blocks.at(0).sound_number, 0);
}

TEST_F(Effect, IsDryUntilASoundIsChosen) {
  start_without_sound();
  expect_dry(run_block());
  effect.select_preset_by_index(k_first_sound);
  expect_processed(run_block());
}

TEST_F(Effect, AnswersOnlyItsOwnHandshake) {
  for (const auto& [index, value] : {std::pair(k_handshake_id, 0), {k_handshake_id, 2}, {k_handshake_id + 1, 1}}) {
    EXPECT_EQ(effect.vendorSpecific(index, value, nullptr, 0.0F), 0);
  }
  EXPECT_THAT(run_block().out_left, Each(0.0F));
}

TEST_F(Effect, BuildsTheCatalogueOncePerHandshake) {
  shake_hands();
  const std::vector<menu_row_ref> rows = effect.getMenuRows();
  EXPECT_EQ(rows.size(), 67U);
  EXPECT_EQ(effect.getCategories().size(), 3U);
  EXPECT_EQ(effect.getAeffect()->flags & effFlagsHasEditor, 0);
  shake_hands();
  EXPECT_EQ(effect.getMenuRows().size(), 2U * 67U);
  EXPECT_EQ(effect.getMenuRows()[66], rows[66]) << "rows keep their positions";
}

TEST_F(Effect, GivesTheEngineAKeyInTheBlockOfASwitchOnly) {
  start_without_sound();
  effect.setParameter(k_chorus_on, 1.0F);
  effect.select_preset_by_index(k_first_electronica_sound);
  stereo_block block = run_block(5);
  run_block(0);

  ASSERT_EQ(recording.blocks.size(), 2U);
  const recorded_block& first = recording.blocks[0];
  EXPECT_EQ(first.curve, 0);
  EXPECT_EQ(first.chorus_on, 1);
  EXPECT_EQ(first.reverb_on, 0);
  EXPECT_EQ(first.sound_number, 8);
  EXPECT_EQ(first.frames, 5);
  EXPECT_THAT(first.inputs, ElementsAre(block.inputs[0], block.inputs[1], nullptr, nullptr));
  EXPECT_GT(first.sound_key.size(), 0U);
  EXPECT_EQ(recording.blocks[1].sound_key, "");
  EXPECT_EQ(recording.blocks[1].sound_number, 8);
  EXPECT_EQ(recording.blocks[1].frames, 0);
}

TEST_F(Effect, SwitchesOnceToTheLastOfSeveralChoices) {
  start_without_sound();
  effect.select_preset_by_index(k_first_sound);
  effect.select_preset_by_index(k_ambient_indigo);
  run_block();
  ASSERT_EQ(recording.blocks.size(), 1U);
  EXPECT_EQ(recording.blocks[0].sound_number, 56);
  EXPECT_EQ(effect.sound_uuid(), "quorvant.deep_vocoders.Ambient_Indigo");
}

TEST_F(Effect, SendsNoKeyWhenTheGateHasNone) {
  gate.has_token = false;
  start_without_sound();
  effect.select_preset_by_index(k_first_sound);
  EXPECT_THAT(run_block().out_left, Each(9.0F));
  EXPECT_EQ(recording.blocks.at(0).sound_key, "");
}

TEST_F(Effect, GoesDryWithoutAWordOnARowThatIsNoSound) {
  start_without_sound();
  effect.select_preset_by_index(k_first_sound);
  run_block();
  const log_capture log;
  effect.select_preset_by_index(k_first_title);
  expect_dry(run_block());
  EXPECT_EQ(effect.sound_uuid(), "");
  EXPECT_EQ(log.text(), "");
}

TEST_F(Effect, IgnoresAChoiceOutsideTheMenu) {
  start_without_sound();
  effect.select_preset_by_index(k_first_sound);
  run_block();
  for (const int32_t row : {-1, 67, INT32_MAX, INT32_MIN}) effect.select_preset_by_index(row);
  EXPECT_THAT(calls_of_block(), ElementsAre("process"));
  EXPECT_EQ(effect.sound_uuid(), "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder");
}

TEST_F(Effect, RefusesAChoiceWhoseCategoryIsClosed) {
  gate.refused_category = 10001;
  start_without_sound();
  effect.select_preset_by_index(k_first_sound);
  effect.select_preset_by_index(k_first_electronica_sound);
  EXPECT_EQ(effect.sound_uuid(), "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder");
  EXPECT_TRUE(effect.getCategories()[0]->activated);
  EXPECT_FALSE(effect.getCategories()[1]->activated);
  expect_processed(run_block());
  EXPECT_EQ(recording.blocks.at(0).sound_number, 0);
}

TEST_F(Effect, LogsOnceWhenTheCategoryClosedBeforeTheSwitch) {
  start_without_sound();
  effect.select_preset_by_index(k_first_electronica_sound);
  gate.refused_category = 10001;
  const log_capture log;
  expect_dry(run_block());
  expect_dry(run_block());
  EXPECT_EQ(log.text(), "soundpack not activated yet!\n");
}

TEST_F(Effect, MovesTheKeysWithTheSoundAndTheOctaveSwitch) {
  start_without_sound();
  effect.select_preset_by_index(k_first_sound);
  run_block();

  effect.setParameter(k_octave_on, 1.0F);
  EXPECT_THAT(calls_of_block(), ElementsAre("off 48 0", "off 52 0", "off 55 0",  //
                                            "on 60 127", "on 64 127", "on 67 127", "process"));
  hold_keys({0, 12});
  run_block();
  effect.select_preset_by_index(k_ambient_indigo);
  EXPECT_THAT(calls_of_block(), ElementsAre("off 48 0", "off 60 0", "on 72 127", "on 84 127", "process"));

  effect.select_preset_by_index(0);  // without a sound the octave switch has no say
  EXPECT_THAT(calls_of_block(), ElementsAre("off 72 0", "off 84 0", "on 36 127", "on 48 127"));
}

TEST_F(Effect, ReleasesClearedKeys) {
  start_without_sound();
  run_block();
  hold_keys({});
  EXPECT_THAT(calls_of_block(), ElementsAre("off 48 0", "off 52 0", "off 55 0"));
  EXPECT_THAT(calls_of_block(), IsEmpty());
}

TEST_F(Effect, CopiesTheWantedKeysForTheEditor) {
  key_flags keys;
  effect.getPendingKeys(keys);
  for (size_t key = 0; key < std::size(keys); ++key) EXPECT_EQ(keys[key], key == 12 || key == 16 || key == 19) << key;
  keys[127] = 7;
  effect.set_pending_keys(keys);
  keys[127] = 0;
  effect.getPendingKeys(keys);
  EXPECT_EQ(keys[127], 7);
}

TEST_F(Effect, StrikesHeldKeysAgainOnTheEngineOfANewRate) {
  start_without_sound();
  effect.select_preset_by_index(k_ambient_indigo);
  run_block();
  recording.calls.clear();
  effect.setSampleRate(48000.0F);
  EXPECT_EQ(effect.getSampleRate(), 48000.0F);
  EXPECT_THAT(recording.take_calls(), ElementsAre("destroy", "create 48000"));
  EXPECT_THAT(calls_of_block(), ElementsAre("on 72 127", "on 76 127", "on 79 127", "process"));
}

TEST_F(Effect, LeavesOutputsAloneAfterARateChangeUntilAnotherSoundIsChosen) {
  start_without_sound();
  effect.select_preset_by_index(k_first_sound);
  run_block();
  effect.setSampleRate(96000.0F);
  EXPECT_THAT(run_block().out_left, Each(9.0F));
  effect.select_preset_by_index(k_first_sound);
  EXPECT_THAT(run_block().out_right, Each(9.0F));
  effect.select_preset_by_index(k_first_sound + 1);
  expect_processed(run_block());
}

TEST_F(Effect, SwitchesAParameterOnAtExactlyOne) {
  start_without_sound();
  effect.select_preset_by_index(k_first_sound);
  effect.setParameter(k_reverb_on, 0.7F);
  run_block();
  EXPECT_EQ(effect.getParameter(k_reverb_on), 0.7F);
  EXPECT_EQ(recording.blocks.back().reverb_on, 0);
  effect.setParameter(k_reverb_on, 1.0F);
  run_block();
  EXPECT_EQ(recording.blocks.back().reverb_on, 1);
  EXPECT_EQ(recording.blocks.back().chorus_on, 0);
  EXPECT_THAT(host.automated, IsEmpty());
}

TEST_F(Effect, TellsTheHostOfTheEditorsParametersOnly) {
  effect.setParameterAutomated(k_octave_on, 1.0F);
  effect.setParameterAutomated(3, 1.0F);
  effect.setParameterAutomated(-1, 1.0F);
  EXPECT_THAT(host.automated, ElementsAre(Pair(2, 1.0F)));
  effect.lose_host();
  effect.setParameterAutomated(k_chorus_on, 1.0F);
  EXPECT_EQ(effect.getParameter(k_chorus_on), 1.0F);
  EXPECT_EQ(host.automated.size(), 1U);
}

TEST_F(Effect, FeedsMonoToBothSides) {
  start_without_sound();
  set_input_channels(1);
  const log_capture log;
  stereo_block block(4);
  float* mono[] = {block.left.data(), nullptr};
  block.run_with(mono, effect.getAeffect());
  EXPECT_EQ(block.out_left, block.left);
  EXPECT_EQ(block.out_right, block.left);

  effect.select_preset_by_index(k_first_sound);
  block.run_with(mono, effect.getAeffect());
  EXPECT_THAT(recording.blocks.at(0).inputs, ElementsAre(mono[0], mono[0], nullptr, nullptr));
  EXPECT_EQ(log.text(), "");
}

TEST_F(Effect, HearsAMissingSecondInputAsSilenceAndLogsIt) {
  start_without_sound();
  const log_capture log;
  stereo_block block(4);
  float* half[] = {block.left.data(), nullptr};
  block.run_with(half, effect.getAeffect());
  EXPECT_EQ(block.out_left, block.left);
  EXPECT_THAT(block.out_right, Each(0.0F));

  effect.select_preset_by_index(k_first_sound);
  block.run_with(half, effect.getAeffect());
  EXPECT_THAT(recording.blocks.at(0).inputs, ElementsAre(half[0], nullptr, nullptr, nullptr));
  const std::string line = "stereo input setup but no second input data channel on process!\n";
  EXPECT_EQ(log.text(), line + line);
}

TEST_F(Effect, DoesWithoutChannelsThatAreMissing) {
  stereo_block block(4);
  float* const none[] = {nullptr, nullptr};
  float* const left_only[] = {block.out_left.data(), nullptr};
  float* const right_only[] = {nullptr, block.out_right.data()};
  float* const voice[] = {block.left.data(), block.right.data()};
  const auto run = [&](float* const* inputs, float* const* outputs) {
    effect.processReplacing(const_cast<float**>(inputs), const_cast<float**>(outputs), block.frames);
  };
  for (float* const* const outputs : {left_only, right_only, none, static_cast<float* const*>(nullptr)}) {
    run(voice, outputs);
  }
  EXPECT_THAT(block.out_left, Each(0.0F));
  EXPECT_THAT(block.out_right, Each(0.0F));

  start_without_sound();
  run(voice, left_only);
  run(voice, right_only);
  expect_dry(block);
  run(voice, none);
  run(none, left_only);
  run(nullptr, right_only);
  EXPECT_THAT(block.out_left, Each(0.0F));
  EXPECT_THAT(block.out_right, Each(0.0F));
}

TEST_F(Effect, CopiesTheDryInputInPlaceWithTheSidesExchanged) {
  start_without_sound();
  const stereo_block original(4);
  stereo_block block(4);
  float* inputs[] = {block.left.data(), block.right.data()};
  float* outputs[] = {block.right.data(), block.left.data()};
  effect.processReplacing(inputs, outputs, block.frames);
  EXPECT_EQ(block.right, original.left);
  EXPECT_EQ(block.left, original.right);
}

TEST_F(Effect, RefusesArrangementsBeyondStereo) {
  const auto arrange = [this](VstInt32 in, VstInt32 out) {
    VstSpeakerArrangement input{}, output{};
    input.numChannels = in;
    output.numChannels = out;
    return effect.setSpeakerArrangement(&input, &output);
  };
  EXPECT_TRUE(arrange(1, 2));
  EXPECT_FALSE(arrange(3, 2));
  EXPECT_FALSE(arrange(2, 3));
  EXPECT_TRUE(effect.setSpeakerArrangement(nullptr, nullptr));

  start_without_sound();
  stereo_block block = run_block();
  EXPECT_EQ(block.out_right, block.left) << "the input is mono as accepted first";
  EXPECT_TRUE(arrange(2, 1));
  expect_dry(run_block());
}

TEST_F(Effect, ReachesForNoHeapInAnOrdinaryBlock) {
  start_without_sound();
  stereo_block block(64);
  recording.running = false;
  for (const int32_t row : {0, k_first_sound}) {
    effect.select_preset_by_index(row);
    block.run(effect.getAeffect());
    hold_keys({1, 2, 3});
    const int64_t before = allocation_count();
    block.run(effect.getAeffect());
    block.run(effect.getAeffect());
    EXPECT_EQ(allocation_count(), before) << "row " << row;
  }
}

// For the thread sanitizer, and for the promise that the last request wins.
TEST_F(Effect, SettlesOnTheLastRequestsOfAnotherThread) {
  start_without_sound();
  recording.running = false;
  std::atomic<bool> done{false};
  std::atomic<int32_t> blocks{0};
  std::thread audio([&] {
    stereo_block block(16);
    for (; !done.load(); blocks.fetch_add(1)) block.run(effect.getAeffect());
  });
  for (int32_t round = 0; round < 500 || blocks.load() < 2000; ++round) {
    effect.select_preset_by_index(round % 67);
    hold_keys({static_cast<size_t>(round % 36)});
    effect.setParameterAutomated(round % 3, static_cast<float>(round % 2));
    if (round < 500 && round % 100 == 0) shake_hands();
  }
  effect.setParameter(k_octave_on, 0.0F);
  effect.select_preset_by_index(k_first_sound);
  hold_keys({12});
  done.store(true);
  audio.join();

  recording.running = true;
  expect_processed(run_block());
  hold_keys({});
  EXPECT_THAT(calls_of_block(), ElementsAre("off 48 0", "process"));
}

}  // namespace
