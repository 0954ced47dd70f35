// MIT License.
#include <gtest/gtest.h>

#include <limits>

#include "engine/envelope_followers.h"
#include "engine/fast_atan2.h"
#include "engine/smooth_magnitudes.h"
#include "tests/engine/engine_words.h"

namespace {

constexpr size_t second = 44100;

double power_near(const waveform& x, double formant_hz) {
  return band_power(x, second / 4, formant_hz / 1.3, formant_hz * 1.3);
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

TEST(Modes, SingTheNotesOfTheirCarrier) {
  for (const int mode : {0, 1, 2, 3, 4, 5, 6, 7}) {
    const instance_ptr instance = make_instance();
    vocoder_note_on(57, 127, instance.get());
    const waveform out =
        run(plain_sound(static_cast<float>(mode)), noise(2 * second, 0.3F), {}, 512, instance.get()).left;
    // A3 is 220 Hz: energy stands on its harmonics, not between them.
    EXPECT_GT(level_at(out, second, second / 2, 440.0), 3.0 * level_at(out, second, second / 2, 550.0)) << mode;
  }
}

// One transform serves both signals, so rounding leaks some -140 dB of the carrier into the modulator's spectrum, of
// which the geometric mean takes the square root.
TEST(Modes, AreSilentForASilentModulator) {
  const waveform carrier = noise(second / 4, 0.3F);
  for (const int mode : all_modes) {
    const sound_values sound = external_carrier_sound(static_cast<float>(mode));
    EXPECT_LT(peak(run_fresh(sound, silence(carrier.size()), carrier).left), mode == 0 ? 1e-4F : 1e-6F) << mode;
  }
}

TEST(Modes, AreSilentForASilentCarrier) {
  const waveform voice = noise(second / 4, 0.3F);
  for (const int mode : all_modes) {
    EXPECT_LT(peak(run_fresh(external_carrier_sound(static_cast<float>(mode)), voice).left), 1e-4F) << mode;
  }
}

TEST(Modes, PassSibilanceEvenWithoutACarrier) {
  const waveform voice = noise(second / 4, 0.3F);
  for (const int mode : {0, 1, 2, 3, 4, 5, 6, 7, 11}) {
    sound_values sound = external_carrier_sound(static_cast<float>(mode));
    sound[value_sibilance_on] = 1.0F;
    const waveform hiss = run_fresh(sound, voice).left;
    EXPECT_GT(decibels(band_power(hiss, 4096, 7000.0, 12000.0) / band_power(hiss, 4096, 200.0, 3000.0)), 20.0) << mode;
    sound[value_sibilance_on] = 2.0F;
    const bool filter_bank = mode == 6 || mode == 7;
    EXPECT_EQ(peak(run_fresh(sound, voice).left) > 1e-4F, !filter_bank) << mode;
  }
}

TEST(Modes, OutsideTheTablePassTheCarrier) {
  const waveform carrier = sine(second, 1000.0, 0.25);
  for (const float mode : {15.0F, -1.0F, 1e9F}) {
    const stereo out = run_fresh(external_carrier_sound(mode), silence(second), carrier);
    EXPECT_GT(level_at(out.left, second / 2, second / 4, 1000.0), 0.02) << mode;
    EXPECT_LT(level_at(out.left, second / 2, second / 4, 1500.0), 1e-3) << mode;
  }
}

TEST(Modes, AreChosenByTheTruncatedValue) {
  const waveform voice = vowel(8192, 900.0, 0.1);
  const waveform carrier = noise(voice.size(), 0.3F);
  EXPECT_EQ(run_fresh(external_carrier_sound(2.9F), voice, carrier).left,
            run_fresh(external_carrier_sound(2.0F), voice, carrier).left);
}

TEST(Modes, OpenTheStereoImageWithAQuadraturePair) {
  const stereo out = run_fresh(external_carrier_sound(2.0F), vowel(second, 900.0, 0.1), noise(second, 0.3F));
  double cross = 0.0;
  double left = 0.0;
  double right = 0.0;
  for (size_t i = second / 4; i < second; ++i) {
    cross += double{out.left[i]} * out.right[i];
    left += double{out.left[i]} * out.left[i];
    right += double{out.right[i]} * out.right[i];
  }
  EXPECT_NEAR(decibels(left / right), 0.0, 0.5);
  EXPECT_LT(std::fabs(cross) / std::sqrt(left * right), 0.6);
}

// Largest step from sample to sample, of those that end in `first` to `end` - 1.
float largest_step(const waveform& x, size_t first, size_t end) {
  float result = 0.0F;
  for (size_t i = first; i < end; ++i) result = std::max(result, std::fabs(x[i] - x[i - 1]));
  return result;
}

// The tail of the old mode and the onset of the new one overlap, so that no step is larger than those of the louder
// one.
TEST(Modes, ChangeInMidStreamWithoutAJump) {
  constexpr size_t part = 8820;  // whole periods of the voice and the carrier
  const waveform voice = vowel(part, 440.0, 0.1);
  const waveform carrier = vowel(part, 330.0, 0.3);
  for (const int apart : {1, 4, 7}) {
    const instance_ptr instance = make_instance();
    waveform out;
    std::vector<float> steps;
    int mode = 0;
    for (size_t i = 0; i <= all_modes.size(); ++i, mode = (mode + apart) % 15) {
      const sound_values sound = external_carrier_sound(static_cast<float>(mode));
      const stereo result = run(sound, voice, carrier, 490, instance.get());
      out.insert(out.end(), result.left.begin(), result.left.end());
      steps.push_back(largest_step(out, i * part + part / 2, (i + 1) * part));
      EXPECT_GT(steps.back(), 1e-4F) << mode;
      if (i == 0) continue;
      EXPECT_LT(largest_step(out, i * part, i * part + part / 2), 1.2F * std::max(steps[i - 1], steps[i])) << mode;
    }
  }
}

TEST(Modes, StartWithoutTheEnvelopesOfAnother) {
  const auto end_of_release = [](float next_mode) {
    const instance_ptr instance = make_instance();
    sound_values sound = external_carrier_sound(2.0F);
    sound[value_env_mix] = 1.0F;
    sound[value_env_release] = 1.0F;
    run(sound, vowel(8192, 900.0, 0.1), noise(8192, 0.3F), 512, instance.get());
    run(sound, silence(1024), noise(1024, 0.3F), 512, instance.get());  // the voice has left the frame
    sound[value_mode] = next_mode;
    return peak(run(sound, silence(8192), noise(8192, 0.3F), 512, instance.get()).left, 3072);
  };
  EXPECT_GT(end_of_release(2.0F), 0.01F);
  EXPECT_LT(end_of_release(4.0F), 1e-4F);
}

TEST(Modes, SurviveAnyValues) {
  const float inf = std::numeric_limits<float>::infinity();
  const float extremes[] = {std::numeric_limits<float>::quiet_NaN(),
                            inf,
                            -inf,
                            1e30F,
                            -1e30F,
                            4e9F,
                            -4e9F,
                            1000.0F,
                            -1.0F,
                            0.0F,
                            0.5F,
                            1.0F,
                            2.5F,
                            7.0F};
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
waveform after_hot_samples(const sound_values& sound, effect_switches effects, const waveform& hot,
                           int32_t block = 490) {
  static const waveform voice = vowel(2 * second, 900.0, 0.1);
  static const waveform carrier = noise(2 * second, 0.3F);
  waveform hot_voice = voice;
  waveform hot_carrier = carrier;
  std::copy(hot.begin(), hot.end(), hot_voice.begin() + 10000);
  std::copy(hot.begin(), hot.end(), hot_carrier.begin() + 12000);
  const instance_ptr instance = make_instance();
  for (const int32_t note : {48, 55}) vocoder_note_on(note, 127, instance.get());
  const stereo out = run(sound, hot_voice, hot_carrier, block, instance.get(), effects);
  EXPECT_TRUE(all_finite(out.left) && all_finite(out.right));
  return waveform(out.left.end() - second / 2, out.left.end());
}

sound_values sound_with_all_memories(int mode) {
  sound_values sound = external_carrier_sound(static_cast<float>(mode));
  sound[value_env_mix] = 0.5F;
  sound[value_env_attack] = 0.02F;
  sound[value_env_release] = 0.02F;
  sound[value_env_average] = 0.05F;
  sound[value_sibilance_on] = 1.0F;
  sound[value_dry_modulator_gain] = 1.0F;
  sound[value_reverb_level] = 0.5F;
  sound[value_reverb_size] = 0.0F;  // a larger one keeps a hot sample for minutes, as long as it doesn't overflow
  return sound;
}

TEST(HotSamples, LeaveEveryModeSoon) {
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

TEST(HotSamples, LeaveTheSameBitsAtAnyBlockLength) {
  sound_values sound = sound_with_all_memories(2);
  sound[value_reverb_size] = 0.7F;
  const waveform hot(700, 3e38F);
  const waveform expected = after_hot_samples(sound, {1, 1}, hot);
  for (const int32_t block : {1, 64, 4096}) EXPECT_EQ(after_hot_samples(sound, {1, 1}, hot, block), expected) << block;
}

TEST(HotSamples, LeaveTheOscillatorsThatFollowTheLevel) {
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

TEST(Freeze, HoldsTheEnvelopeWhileTheCarrierMoves) {
  for (const int mode : {0, 1, 2, 3, 4, 5, 11}) {
    const auto frozen_end = [mode](const waveform& later_voice, const waveform& later_carrier) {
      const instance_ptr instance = make_instance();
      sound_values sound = external_carrier_sound(static_cast<float>(mode));
      run(sound, vowel(16384, 700.0, 0.1), noise(16384, 0.3F, 1), 512, instance.get());
      sound[value_freeze_on] = 1.0F;
      return run(sound, later_voice, later_carrier, 512, instance.get()).left;
    };
    const waveform held = frozen_end(vowel(8192, 2500.0, 0.1), noise(8192, 0.3F, 2));
    EXPECT_LT(largest_difference(held, frozen_end(silence(8192), noise(8192, 0.3F, 2))), 1e-3F * peak(held)) << mode;
    EXPECT_GT(peak(held, 4096), 0.001F) << mode;
    if (mode != 11) {
      EXPECT_GT(largest_difference(held, frozen_end(silence(8192), noise(8192, 0.3F, 3))), 0.1F * peak(held)) << mode;
    }
  }
}

TEST(Noise, ReplacesTheCarrierInUnvoicedFramesOnly) {
  const waveform carrier = sine(second / 2, 220.0, 0.3);
  sound_values sound = external_carrier_sound(2.0F);
  const waveform hiss = [] {  // a first difference: rising by 6 dB an octave
    waveform x = noise(second / 2, 0.3F);
    for (size_t i = x.size() - 1; i > 0; --i) x[i] -= x[i - 1];
    return x;
  }();
  const waveform vowel_plain = run_fresh(sound, vowel(second / 2, 700.0, 0.1), carrier).left;
  const waveform hiss_plain = run_fresh(sound, hiss, carrier).left;
  sound[value_noise_on] = 1.0F;
  EXPECT_EQ(run_fresh(sound, vowel(second / 2, 700.0, 0.1), carrier).left, vowel_plain);
  EXPECT_NE(run_fresh(sound, hiss, carrier).left, hiss_plain);
}

TEST(Followers, SettleAtTheStatedLevels) {
  const auto settled = [](float mix, float attack) {
    const follower_settings settings{attack * 32.0F, 0.0F, 8.0F, attack * 2.0F + 1.0F, mix};
    float fast = 0.0F;
    float slow = 0.0F;
    for (int i = 0; i < 2000; ++i) followers_advance(0.7F, settings, &fast, &slow);
    return followers_value(settings, fast, slow);
  };
  EXPECT_NEAR(settled(1.0F, 0.5F), 0.7F, 1e-4F);
  EXPECT_NEAR(settled(0.0F, 0.5F), 0.7F, 1e-4F);
  EXPECT_NEAR(settled(1.0F, 0.0F), 0.35F, 1e-4F);
}

TEST(Followers, RiseByTheAttackAndFallByTheRelease) {
  const follower_settings settings{3.0F, 1.0F, 0.0F, 1.0F, 1.0F};
  float fast = 0.0F;
  float slow = 0.0F;
  followers_advance(1.0F, settings, &fast, &slow);
  EXPECT_FLOAT_EQ(fast, 0.25F);
  followers_advance(0.05F, settings, &fast, &slow);
  EXPECT_FLOAT_EQ(fast, 0.15F);
  EXPECT_FLOAT_EQ(slow, 0.05F);
}

TEST(FastAtan2, StaysWithinItsErrorAndHandlesTheAxes) {
  // One lane among others of other quadrants.
  const auto angle_of = [](float y, float x) {
    return fast_atan2(float4{1.0F, y, -2.0F, 0.0F}, float4{0.0F, x, -1.0F, 3.0F})[1];
  };
  double worst = 0.0;
  for (int i = 0; i < 10000; ++i) {
    const double angle = (i / 5000.0 - 1.0) * 3.1415;
    for (const double radius : {1e-6, 1.0, 1e6}) {
      const auto x = static_cast<float>(radius * std::cos(angle));
      const auto y = static_cast<float>(radius * std::sin(angle));
      worst = std::max(worst, std::fabs(angle_of(y, x) - std::atan2(double{y}, double{x})));
    }
  }
  EXPECT_LT(worst, 0.005);
  EXPECT_EQ(angle_of(0.0F, 0.0F), 0.0F);
  EXPECT_EQ(angle_of(2.0F, 0.0F), 1.5707964F);
  EXPECT_EQ(angle_of(-2.0F, 0.0F), -1.5707964F);
  EXPECT_EQ(angle_of(0.0F, -1.0F), 3.1415927F);
}

TEST(SmoothMagnitudes, FlattensRipplesTheMoreTheNarrowerItIs) {
  auto tables = std::make_unique<smoothing_tables>();
  std::array<float, 513> ripple;
  for (size_t k = 0; k < ripple.size(); ++k) {
    ripple[k] = 1.0F + 0.5F * std::cos(2.0F * std::numbers::pi_v<float> * static_cast<float>(k) / 20.0F);
  }
  const auto depth = [&](int32_t width) {
    std::array<float, 513> result;
    smooth_magnitudes(ripple.data(), 1024, width, result.data(), tables.get());
    const auto [low, high] = std::minmax_element(result.begin() + 100, result.begin() + 400);
    EXPECT_NEAR((*low + *high) / 2.0F, 1.0F, 0.1F) << width;
    return *high - *low;
  };
  const float fine = depth(512);
  const float coarse = depth(32);
  EXPECT_GT(fine, 0.5F);
  EXPECT_LT(coarse, 0.1F);
  EXPECT_EQ(depth(512), fine);  // the window follows the width back
}

}  // namespace
