// MIT License.
#include <gtest/gtest.h>

#include <limits>

#include "engine/fast_atan2.h"
#include "engine/fast_sine.h"
#include "engine/transform_modes.h"
#include "tests/engine/engine_words.h"

namespace {

constexpr size_t second = 44100;

double power_near(const waveform& x, double formant_hz) {
  double sum = 0.0;
  for (double hz = formant_hz / 1.3; hz < formant_hz * 1.3; hz += 20.0) {
    sum += std::pow(level_at(x, second / 4, second / 2, hz), 2.0);
  }
  return sum;
}

TEST(Modes, ImposeTheFormantOfTheModulatorOnTheCarrier) {
  const waveform carrier = noise(second, 0.3F);
  const waveform low_vowel = vowel(second, 700.0, 0.1);
  const waveform high_vowel = vowel(second, 2200.0, 0.1);
  for (const int mode : all_modes) {
    const sound_values sound = external_carrier_sound(static_cast<float>(mode));
    const waveform low = run_fresh(sound, low_vowel, carrier).left;
    const waveform high = run_fresh(sound, high_vowel, carrier).left;
    const double swing = decibels(power_near(low, 700.0) / power_near(low, 2200.0)) -
                         decibels(power_near(high, 700.0) / power_near(high, 2200.0));
    double expected = 20.0;
    if (mode == 5) expected = 10.0;   // the coarsest envelope
    if (mode == 12) expected = 17.0;  // octaves that leak into each other
    EXPECT_GT(swing, expected) << "mode " << mode;
    EXPECT_GT(peak(low, second / 4), 0.001F) << "mode " << mode;
  }
}

TEST(Modes, SurviveAnyValues) {
  const float inf = std::numeric_limits<float>::infinity();
  // clang-format off
  const float extremes[] = {std::numeric_limits<float>::quiet_NaN(), inf, -inf, 1e30F, -1e30F, 4e9F, -4e9F,
                            1000.0F, -1.0F, 0.0F, 0.5F, 1.0F, 2.5F, 7.0F};
  // clang-format on
  uint32_t seed = 11;
  for (int round = 0; round < 300; ++round) {
    const instance_ptr instance = make_instance(round % 3 == 0 ? 48000.0F : 44100.0F);
    for (const int32_t note : {27, 60, 108}) vocoder_note_on(note, 127, instance.get());
    for (int change = 0; change < 2; ++change) {
      sound_values sound = plain_sound(static_cast<float>(all_modes[static_cast<size_t>(round) % all_modes.size()]));
      for (size_t i = 0; i < value_output_gain_db; ++i) {  // an unbounded gain may well overflow
        seed = seed * 1664525U + 1013904223U;
        if (seed >> 30 == 0) sound[i] = extremes[(seed >> 8) % std::size(extremes)];
      }
      const stereo out = run(sound, noise(2048, 2.0F, seed), noise(2048, 2.0F, seed + 1), 700, instance.get());
      ASSERT_TRUE(all_finite(out.left) && all_finite(out.right)) << round;
    }
  }
}

// Plays a voice with `hot` samples in it and in its carrier, then on for somewhat more than a second: the shortest tail
// of the reverb needs that long to fall by the 800 dB that a hot sample may be above the others.
//   returns  the half second after that
waveform after_hot_samples(const sound_values& sound, effect_switches effects, const waveform& hot) {
  static const waveform voice = vowel(2 * second, 900.0, 0.1);
  static const waveform carrier = noise(2 * second, 0.3F);
  waveform hot_voice = voice;
  waveform hot_carrier = carrier;
  std::copy(hot.begin(), hot.end(), hot_voice.begin() + 10000);
  std::copy(hot.begin(), hot.end(), hot_carrier.begin() + 12000);
  const instance_ptr instance = make_instance();
  for (const int32_t note : {48, 55}) vocoder_note_on(note, 127, instance.get());
  const stereo out = run(sound, hot_voice, hot_carrier, 490, instance.get(), effects);
  EXPECT_TRUE(all_finite(out.left) && all_finite(out.right));
  return waveform(out.left.end() - second / 2, out.left.end());
}

sound_values sound_with_all_memories(int mode) {
  sound_values sound = external_carrier_sound(static_cast<float>(mode));
  sound[value_env_mix] = 0.5F;
  sound[value_env_attack] = sound[value_env_release] = sound[value_env_average] = 0.02F;
  sound[value_sibilance_on] = sound[value_dry_modulator_gain] = 1.0F;
  sound[value_reverb_level] = 0.5F;
  sound[value_reverb_size] = 0.0F;  // a larger one keeps a hot sample for minutes, as long as it doesn't overflow
  return sound;
}

TEST(HotSamples, DecayInEveryMode) {
  const std::pair<const char*, waveform> hot_samples[] = {
      {"1e20", {1e20F}}, {"-1e30", {-1e30F}}, {"two of 2e38", {2e38F, 2e38F}}, {"many of 3e38", waveform(700, 3e38F)}};
  for (const int mode : all_modes) {
    const sound_values sound = sound_with_all_memories(mode);
    const waveform expected = after_hot_samples(sound, {1, 1}, {});
    for (const auto& [name, hot] : hot_samples) {
      const waveform out = after_hot_samples(sound, {1, 1}, hot);
      EXPECT_LT(largest_difference(out, expected), 0.01F * peak(expected)) << mode << ": " << name;
    }
  }
}

TEST(HotSamples, DoNotStallOscillatorsThatFollowTheLevel) {
  for (const float sampled : {0.0F, 1.0F}) {
    sound_values sound = plain_sound(15.0F);  // the carrier alone
    sound[value_sampled] = sampled;
    sound[value_pitch_source1] = sound[value_pitch_source2] = 1.0F;
    sound[value_pitch_depth1] = sound[value_pitch_depth2] = 0.01F;
    const float expected = peak(after_hot_samples(sound, {}, {}));
    ASSERT_GT(expected, 0.01F);
    for (const float hot : {1e5F, 1e9F, 1e20F, -3e38F}) {
      const float level = peak(after_hot_samples(sound, {}, waveform(30, hot)));
      EXPECT_NEAR(level, expected, 0.3F * expected) << hot;
    }
  }
}

TEST(Modes, OnSamplesLeaveTheModulatorUnchangedWhenTheArenaIsExhausted) {
  const waveform modulator = noise(frame_size, 1.0F);
  for (const int32_t mode : {6, 7, 8, 9, 10, 12, 13, 14}) {
    const auto state = std::make_unique<voco_state>();
    for (const int32_t capacity : {0, 1024, 2047, 2048 + 512, 3 * 1024}) {
      if ((mode == 8 || mode == 9 || mode == 10) && capacity >= 2048) continue;  // they need no more
      state->arena.capacity = capacity;
      std::ranges::copy(modulator, state->time_modulator.begin());
      std::ranges::copy(modulator, state->time_carrier.begin());
      vocoder_algorithm_of(mode).vocode(state.get());
      EXPECT_TRUE(std::ranges::equal(state->time_modulator, modulator)) << mode << ", " << capacity;
      EXPECT_EQ(state->arena.used, 0);
    }
    EXPECT_EQ(state->wavelet_level_avg[0], 0.0F) << mode;
  }
}

// A frozen envelope of 1 at the phases of bins that a sound hardly has.
TEST(Modes, KeepThePhaseOfBinsOfAnySize) {
  const float inf = std::numeric_limits<float>::infinity();
  const std::pair<float, float> bins[] = {{0.0F, 0.0F},     {-inf, 3.0F},     {inf, -inf},       {2e38F, 1e38F},
                                          {-3e16F, 1e-3F},  {1e-21F, 2e-21F}, {1e-37F, -1e-37F}, {0.0F, -4e-16F},
                                          {-3e38F, -3e38F}, {3.0F, -4.0F},    {-1e-16F, 0.0F},   {5e14F, 0.0F}};
  const auto state = std::make_unique<voco_state>();
  state->freeze_on = 1;
  state->target_env.fill(1.0F);
  size_t at = 0;
  for (const auto& [re, im] : bins) {
    state->carrier_spectrum[at++] = re;
    state->carrier_spectrum[at++] = im;
  }
  state->carrier_spectrum[at] = std::nanf("");
  transform_carrier_phase(state.get());
  const float* found = state->carrier_spectrum.data();
  for (const auto& [re, im] : bins) {
    const double phase = std::atan2(double{im}, double{re});
    EXPECT_NEAR(*found++, 4.0 * std::cos(phase), 1e-6) << re << ", " << im;
    EXPECT_NEAR(*found++, 4.0 * std::sin(phase), 1e-6) << re << ", " << im;
  }
  EXPECT_TRUE(std::isnan(found[0]));
  EXPECT_EQ(found[2], 4.0F);  // a zero among others
}

// A judge of the modes has the same formula; this is its claim.
TEST(FastAtan2, StaysWithinItsError) {
  for (int i = 0; i < 10000; ++i) {
    const double angle = (i / 5000.0 - 1.0) * 3.1415;
    const auto x = static_cast<float>(1e-6 * std::cos(angle));
    const auto y = static_cast<float>(1e-6 * std::sin(angle));
    // One lane among others of other quadrants.
    const float found = fast_atan2(float4{1.0F, y, -2.0F, 0.0F}, float4{0.0F, x, -1.0F, 3.0F})[1];
    ASSERT_NEAR(found, std::atan2(double{y}, double{x}), 0.005);
  }
}

TEST(FastSine, StaysWithinItsErrorFromMinusFourToFour) {
  double error = 0.0;
  for (int i = -400000; i < 400000; i += 4) {
    float4 angles{};
    for (int lane = 0; lane < 4; ++lane) angles[lane] = 1e-5F * static_cast<float>(i + lane);
    const auto [cosine, sine] = fast_cosine_and_sine(angles);
    for (int lane = 0; lane < 4; ++lane) {
      error = std::max(error, std::fabs(cosine[lane] - std::cos(double{angles[lane]})));
      error = std::max(error, std::fabs(sine[lane] - std::sin(double{angles[lane]})));
    }
  }
  EXPECT_LT(error, 2e-7);
  const auto [cosine, sine] = fast_cosine_and_sine(float4{0.0F, 1.0F, 4.0F, std::nanf("")});
  EXPECT_EQ(cosine[0], 1.0F);
  EXPECT_EQ(sine[0], 0.0F);
  EXPECT_TRUE(std::isnan(cosine[3]) && std::isnan(sine[3]));
}

}  // namespace
