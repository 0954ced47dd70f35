// MIT License.
#include "engine/vocoder.h"

#include <gtest/gtest.h>

#include <thread>

#include "dsp/noise.h"
#include "engine/block_framing.h"
#include "engine/output_equaliser.h"
#include "tests/engine/engine_words.h"

namespace {

constexpr uint8_t key[] = {1};

// The input of 1024 samples ago, as it leaves the equaliser.
waveform equalised_delay(const waveform& input) {
  output_equaliser equaliser;
  equaliser_prepare(44100.0F, nullptr, &equaliser);
  equaliser_set_gain(0.0F, &equaliser);
  waveform left(input.size(), 0.0F);
  std::copy(input.begin(), input.end() - 1024, left.begin() + 1024);
  waveform right = left;
  equaliser_process(left.data(), right.data(), static_cast<int32_t>(left.size()), &equaliser);
  return left;
}

sound_values dry_sound() {
  sound_values sound = external_carrier_sound(2.0F);
  sound[value_wet_gain] = 0.0F;
  sound[value_dry_modulator_gain] = 1.0F;
  return sound;
}

TEST(Vocoder, ToleratesANullInstance) {
  float sample = 0.0F;
  uint32_t bytes = 7;
  const float* const inputs[4] = {};
  float* const outputs[2] = {&sample, &sample};
  EXPECT_EQ(vocoder_process_sound(0, 0, 0, 0, key, 1, inputs, outputs, nullptr), 1);
  EXPECT_EQ(vocoder_process(plain_sound(0), 0, 0, 1, inputs, outputs, nullptr), 1);
  EXPECT_EQ(vocoder_set_target_curve(0, 1, nullptr), 1);
  EXPECT_EQ(vocoder_get_note_list(&bytes, nullptr), nullptr);
  EXPECT_EQ(bytes, 0U);
  vocoder_note_on(60, 127, nullptr);
  vocoder_note_off(60, 0, nullptr);
  vocoder_all_notes_off(nullptr);
  vocoder_set_pitch_bend(64, nullptr);
  vocoder_set_sustain(1, nullptr);
  vocoder_set_note_list(&sample, 4, nullptr);
  vocoder_destroy(nullptr);
}

TEST(Vocoder, RefusesNegativeAndNonFiniteRatesAndTakesZeroAs44100) {
  for (const float rate : {-44100.0F, INFINITY, NAN}) EXPECT_EQ(vocoder_create(rate), nullptr) << rate;
  const waveform voice = noise(8000, 0.3F);
  EXPECT_EQ(run(dry_sound(), voice, {}, 333, make_instance(0.0F).get()).left, run_fresh(dry_sound(), voice).left);
}

TEST(Vocoder, WritesNothingBeforeItHasASound) {
  const instance_ptr instance = make_instance();
  waveform left(64, 9.0F), right(64, 9.0F), voice = noise(64, 0.5F);
  const float* const inputs[4] = {voice.data(), nullptr, nullptr, nullptr};
  float* const outputs[2] = {left.data(), right.data()};
  EXPECT_EQ(vocoder_process_sound(0, 0, 0, 0, nullptr, 64, inputs, outputs, instance.get()), 1);
  EXPECT_EQ(vocoder_process_sound(0, 0, 0, 58, key, 64, inputs, outputs, instance.get()), 1);
  EXPECT_EQ(left, waveform(64, 9.0F));
  EXPECT_EQ(right, waveform(64, 9.0F));
}

TEST(Vocoder, ChangesItsSoundOnlyWithAKeyAndAText) {
  const waveform voice = noise(4096, 0.5F);
  const auto play = [&voice](std::initializer_list<std::pair<int32_t, const uint8_t*>> blocks) {
    const instance_ptr instance = make_instance();
    vocoder_note_on(60, 127, instance.get());
    waveform left(voice.size());
    size_t start = 0;
    for (const auto& [number, sound_key] : blocks) {
      const float* const inputs[4] = {voice.data() + start, nullptr, nullptr, nullptr};
      float* const outputs[2] = {left.data() + start, nullptr};
      EXPECT_EQ(vocoder_process_sound(0, 0, 0, number, sound_key, 1024, inputs, outputs, instance.get()), 0);
      start += 1024;
    }
    return left;
  };
  const waveform steady = play({{1, key}, {1, nullptr}, {1, nullptr}, {1, nullptr}});
  EXPECT_EQ(play({{1, key}, {2, nullptr}, {-1, nullptr}, {58, key}}), steady);
  EXPECT_NE(play({{1, key}, {3, key}, {3, nullptr}, {3, nullptr}}), steady);
}

TEST(Vocoder, ReportsAnUnknownTargetCurve) {
  const instance_ptr instance = make_instance();
  testing::internal::CaptureStdout();
  EXPECT_EQ(vocoder_set_target_curve(0, 1, instance.get()), 0);
  EXPECT_EQ(vocoder_set_target_curve(3, 1, instance.get()), 1);
  EXPECT_EQ(testing::internal::GetCapturedStdout(),
            "ERROR: invalid target curve specified (3). There are 1 curves (0-0)\n");
}

TEST(Vocoder, BendsAllNotesByTwoSemitones) {
  const auto bent_hz = [](int32_t bend) {
    const instance_ptr instance = make_instance();
    sound_values sound = plain_sound(15.0F);
    run(sound, silence(64), {}, 64, instance.get());  // the first commit centres the bend
    vocoder_note_on(57, 127, instance.get());
    vocoder_set_pitch_bend(bend, instance.get());
    return partial_hz(run(sound, silence(66150), {}, 512, instance.get()).left, 22050, 44100,
                      note_hz(57) * std::exp2((bend - 64) / 64.0 / 6.0));
  };
  const double centre = bent_hz(64);
  EXPECT_NEAR(cents(bent_hz(0), centre), -200.0, 1.0);
  EXPECT_NEAR(cents(bent_hz(127), centre), 200.0 * 63 / 64, 1.0);
}

TEST(Vocoder, ReturnsAndAcceptsItsNotesAsAList) {
  const instance_ptr instance = make_instance();
  vocoder_note_on(60, 1, instance.get());
  vocoder_note_on(64, 127, instance.get());
  vocoder_note_on(60, 0, instance.get());  // velocity 0 releases
  uint32_t bytes = 0;
  const float* const list = vocoder_get_note_list(&bytes, instance.get());
  ASSERT_EQ(bytes, 128U);
  EXPECT_EQ(list[0] + list[1], 64.0F);
  const float chord[2] = {48.0F, 55.0F};
  vocoder_set_note_list(chord, sizeof(chord), instance.get());
  EXPECT_EQ(list[0], 48.0F);
  vocoder_all_notes_off(instance.get());
  EXPECT_EQ(list[0], 0.0F);
}

// ---- framing

TEST(Framing, HalvesAndClampsTheDryCarrierAndSwapsTheInputs) {
  const waveform carrier = noise(6000, 0.5F);
  waveform halved = carrier;
  for (float& sample : halved) sample *= 0.5F;
  sound_values sound = dry_sound();
  sound[value_dry_modulator_gain] = -1.0F;
  sound[value_dry_carrier_gain] = 2.0F;
  const waveform voice = noise(6000, 0.5F, 9);
  EXPECT_EQ(run_fresh(sound, voice, carrier).left, equalised_delay(halved));
  sound = dry_sound();
  sound[value_swap] = 1.0F;
  EXPECT_EQ(run_fresh(sound, voice, carrier).left, equalised_delay(carrier));
}

TEST(Framing, IsBitIdenticalAtAnyBlockLength) {
  const waveform voice = vowel(12000, 700.0, 0.05);
  const waveform carrier = noise(voice.size(), 0.3F);
  for (const int mode : all_modes) {
    const sound_values sound = external_carrier_sound(static_cast<float>(mode));
    const stereo expected = run_fresh(sound, voice, carrier, 512);
    for (const int32_t block : {1, 7, 64, 511, 513, 1000, 1024, 4096}) {
      const stereo out = run_fresh(sound, voice, carrier, block);
      ASSERT_EQ(out.left, expected.left) << "mode " << mode << ", block " << block;
      ASSERT_EQ(out.right, expected.right) << "mode " << mode << ", block " << block;
    }
  }
}

TEST(Framing, ConvertsEachBlockOnItsOwn) {
  const std::array<float, 4> four = {0.0F, 1.0F, 2.0F, 3.0F};
  std::array<float, 8> eight{};
  convert_block(four.data(), 4, eight.data(), 8);
  EXPECT_EQ(eight, (std::array<float, 8>{0.0F, 0.5F, 1.0F, 1.5F, 2.0F, 2.5F, 3.0F, 3.0F}));
  std::array<float, 2> two{};
  convert_block(eight.data(), 8, two.data(), 2);
  EXPECT_EQ(two, (std::array<float, 2>{0.0F, 2.0F}));
  convert_block(four.data(), 0, two.data(), 2);
  EXPECT_EQ(two, (std::array<float, 2>{0.0F, 0.0F}));
}

double heard_cents(float rate, int32_t block) {
  const instance_ptr instance = make_instance(rate);
  vocoder_note_on(57, 127, instance.get());
  const auto second = static_cast<size_t>(rate);
  const stereo out = run(plain_sound(15.0F), silence(2 * second), {}, block, instance.get());
  return cents(partial_hz(out.left, second, second, note_hz(57), rate), note_hz(57));
}

// Blocks of whole frames of the core keep it.
TEST(Framing, ShiftsThePitchByTwiceTheRoundingOfABlock) {
  EXPECT_NEAR(heard_cents(22050.0F, 111), 0.0, 1.0);
  EXPECT_NEAR(heard_cents(48000.0F, 160), 0.0, 1.0);
  EXPECT_NEAR(heard_cents(48000.0F, 512), 2400.0 * std::log2(470.0 / 470.4), 1.0);
  EXPECT_NEAR(heard_cents(96000.0F, 160), 2400.0 * std::log2(74.0 / 73.5), 1.0);
}

TEST(Framing, AcceptsTheSameArraysForInputAndOutput) {
  const waveform voice = noise(4096, 0.5F);
  waveform left = voice;
  waveform right = silence(voice.size());
  const instance_ptr instance = make_instance();
  const float* const inputs[4] = {left.data(), right.data(), right.data(), nullptr};
  float* const outputs[2] = {right.data(), left.data()};
  vocoder_process(dry_sound(), 0, 0, static_cast<int32_t>(voice.size()), inputs, outputs, instance.get());
  EXPECT_EQ(left, equalised_delay(voice));
}

TEST(Framing, AcceptsMissingBuffersAndEmptyBlocks) {
  const instance_ptr instance = make_instance(96000.0F);
  EXPECT_EQ(vocoder_process(dry_sound(), 0, 0, 100, nullptr, nullptr, instance.get()), 0);
  EXPECT_EQ(vocoder_process(dry_sound(), 0, 0, 0, nullptr, nullptr, instance.get()), 0);
  EXPECT_EQ(vocoder_process(dry_sound(), 0, 0, 1, nullptr, nullptr, instance.get()), 0);
  EXPECT_EQ(vocoder_process(dry_sound(), 0, 0, -1, nullptr, nullptr, instance.get()), 1);
}

TEST(ProcessValues, TakesTheValuesInTheirOrder) {
  sound_values v = plain_sound(2.0F);
  for (size_t i = 0; i < v.size(); ++i) v[i] += 0.01F * static_cast<float>(i % 7);
  v[value_noise_on] = v[value_swap] = v[value_ring] = v[value_sync] = 1.0F;
  v[value_pitch_source1] = 0.0F, v[value_pitch_source2] = 1.0F;
  const waveform voice = noise(4096, 0.5F);
  const float* const inputs[4] = {voice.data(), nullptr, voice.data(), nullptr};
  waveform left[2] = {silence(4096), silence(4096)};
  waveform right[2] = {silence(4096), silence(4096)};
  for (const int call : {0, 1}) {
    noise_state = 1;
    const instance_ptr instance = make_instance();
    vocoder_note_on(60, 1, instance.get());
    float* const outputs[2] = {left[call].data(), right[call].data()};
    const int32_t refused =
        call == 0 ? vocoder_process(v, 1, 1, 4096, inputs, outputs, instance.get())
                  : vocoder_process_values(0, 1, 1, v[0], v[1], v[2], v[3], v[4], v[5], v[6], v[7], v[8], v[9], v[10],
                                           v[11], v[12], v[13], v[14], v[15], v[16], v[17], v[18], v[19], v[20], v[21],
                                           v[22], v[23], v[24], v[25], v[26], v[27], v[28], v[29], v[30], v[31], v[32],
                                           v[33], v[34], v[35], v[36], 4096, inputs, outputs, instance.get());
    EXPECT_EQ(refused, 0);
  }
  EXPECT_GT(peak(left[0]), 0.01F);
  EXPECT_EQ(left[0], left[1]);
  EXPECT_EQ(right[0], right[1]);
}

TEST(Framing, SilencesBadSamplesAloneInEveryMode) {
  waveform voice = vowel(8192, 700.0, 0.05);
  waveform clean = voice;
  const float bad[] = {NAN, INFINITY, -INFINITY};
  for (size_t i = 0; i < 60; ++i) {
    const size_t at = 500 + i * 97;
    voice[at] = bad[i % 3];
    clean[at] = 0.0F;
  }
  for (const int mode : all_modes) {
    const sound_values sound = external_carrier_sound(static_cast<float>(mode));
    const stereo out = run_fresh(sound, voice, voice);
    EXPECT_TRUE(all_finite(out.left)) << mode;
    EXPECT_EQ(out.left, run_fresh(sound, clean, clean).left) << mode;
  }
}

// ---- repeatability

TEST(RepeatabilityThreads, InstancesOnTwoThreadsDoNotDisturbEachOther) {
  waveform results[2];
  std::thread threads[2];
  for (size_t i = 0; i < 2; ++i) {
    threads[i] = std::thread([&results, i] {
      for (const int mode : {3, 4, 5, 7, 1}) {
        const instance_ptr instance = make_instance();
        for (const int32_t note : {48, 52, 55}) vocoder_note_on(note, 127, instance.get());
        const stereo out = run(plain_sound(float(mode)), vowel(16384, 900.0, 0.05), {}, 480, instance.get());
        results[i].insert(results[i].end(), out.left.begin(), out.left.end());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(results[0], results[1]);
}

}  // namespace
