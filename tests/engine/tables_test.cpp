// MIT License. The engine's constants, stated or computed independently. Those of the frame step, the spectral modes
// and the filter bank are in plain_engine.h, the reverb's taps and weights in reverb_test.cpp.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "dsp/oscillators.h"
#include "engine/distance_delay.h"
#include "engine/motion.h"
#include "engine/output_equaliser.h"
#include "engine/parameter_commit.h"
#include "engine/voco_state.h"
#include "tests/engine/engine_words.h"

namespace {

// --- The state before the first commit ---

// Bytes that aren't 0 in a record of static storage, whose padding is 0.
template <typename Record>
int64_t set_bytes(const Record& record) {
  const auto* const bytes = reinterpret_cast<const unsigned char*>(&record);
  return std::count_if(bytes, bytes + sizeof(Record), [](unsigned char byte) { return byte != 0; });
}

TEST(Tables, StartFromAZeroedState) {
  static voco_state fresh;
  for (distance_delay* const delay :
       {&fresh.chorus.left, &fresh.chorus.right, &fresh.reverb.motion_left, &fresh.reverb.motion_right}) {
    EXPECT_EQ(delay->speed, 343.0F);
    EXPECT_EQ(delay->sample_rate, 44100.0F);
    EXPECT_EQ(delay->max_distance, 10.0F);
    EXPECT_EQ(delay->distance, 1.0F);
    delay->speed = delay->sample_rate = delay->max_distance = delay->distance = 0.0F;
  }
  for (motion_anchor* const anchor : {&fresh.chorus.anchor, &fresh.reverb.anchor}) {
    EXPECT_EQ(anchor->counter, -1.0);  // no counter is
    anchor->counter = 0.0;
  }
  EXPECT_EQ(set_bytes(fresh), set_bytes(fresh.arena));  // which has its capacity
  static output_equaliser equaliser;
  EXPECT_EQ(set_bytes(equaliser), 0);
}

// --- Values ---

// Every value is one more than its number, so that none can pass for another.
sound_values numbered_values() {
  sound_values values;
  std::iota(values.begin(), values.end(), 1.0F);
  return values;
}

TEST(Tables, CommitEachValueToItsField) {
  const voco_params params = {1,  2,  3, 4,  5,  6,  7,  77, 8,  9,  10, 11, 0,  13, 14, 15, 16, 17, 18,
                              19, 20, 0, 22, 23, 24, 25, 26, 27, 28, 29, 30, 31, 32, 33, 34, 35, 36, 44000};
  EXPECT_EQ(voco_params_from(numbered_values(), 77.0F, 44000.0F), params);
  const auto state = committed(numbered_values(), 22050.0F);
  const std::array<float, 21> synth = {2,  19, 20, 22, 23, 24, 25, 26, 27, 28, 29,
                                       30, 31, 32, 33, 34, 35, 36, 15, 16, 17};
  EXPECT_EQ(state->synth_params, synth);
  EXPECT_EQ(state->internal_carrier, 18.0F);
  const std::array floats = {state->env_mix, state->env_attack, state->env_release, state->env_average};
  EXPECT_EQ(floats, (std::array{4.0F, 5.0F, 6.0F, 7.0F}));
  const std::array numbers = {state->mode, state->sibilance_on, state->noise_on, state->freeze_on};
  EXPECT_EQ(numbers, (std::array{8, 9, 10, 11}));
  EXPECT_EQ(state->reverb_level, 13.0F);
  EXPECT_EQ(committed(numbered_values(), 0.0F)->synth_params[0], 1.0F);

  const wsyn_state& fields = state->synth;
  const float in_order[] = {fields.sync,          fields.ring,          fields.coarse1,      fields.fine1,
                            fields.pitch_source1, fields.pitch_depth1,  fields.lfo_control1, fields.coarse2,
                            fields.fine2,         fields.pitch_source2, fields.pitch_depth2, fields.lfo_control2};
  for (size_t i = 0; i < std::size(in_order); ++i) EXPECT_EQ(in_order[i], 25.0F + static_cast<float>(i)) << i;
  EXPECT_EQ(fields.wave1, 23);
  EXPECT_EQ(fields.wave2, 24);
  EXPECT_EQ(fields.lfo_step1, 31.0F * 31.0F * 128.0F);
  EXPECT_EQ(fields.lfo_step2, 36.0F * 36.0F * 128.0F);
  EXPECT_EQ(fields.shaper_drive, 17.0F * 4.0F);
}

// --- Thresholds ---

TEST(Tables, SwitchAtTheirThresholds) {
  const auto dry_through = [](size_t index, float value, effect_switches effects) {
    sound_values sound = external_carrier_sound(2.0F);
    sound[value_wet_gain] = 0.0F;
    sound[value_dry_modulator_gain] = 1.0F;
    sound[value_reverb_size] = 0.1F;
    sound[index] = value;
    return run(sound, noise(6000, 0.5F), {}, 500, make_instance().get(), effects).left;
  };
  const waveform dry = dry_through(value_swap, 0.0F, {});
  EXPECT_GT(peak(dry), 0.4F);
  EXPECT_EQ(dry_through(value_swap, 0.5F, {}), dry);
  EXPECT_EQ(peak(dry_through(value_swap, 0.501F, {})), 0.0F);
  EXPECT_EQ(dry_through(value_reverb_level, 0.001F, {.reverb = 1}), dry);
  EXPECT_NE(dry_through(value_reverb_level, 0.0011F, {.reverb = 1}), dry);
  EXPECT_EQ(dry_through(value_reverb_level, 0.5F, {}), dry);
}

// --- Equaliser ---

TEST(Tables, HoldTheTargetCurveToWhichOffsetsAreAdded) {
  constexpr float curve[10][2] = {{32, 3},   {64, 2},      {125, 1},    {250, 0},  {500, 0},
                                  {1000, 0}, {2000, 1.25}, {4000, 1.5}, {8000, 2}, {16000, 2.5}};
  const std::array<float, 10> offsets = {0, 0, 0, 0, 0, -6.0F, 0, 0, 0, 0};
  output_equaliser equaliser;
  equaliser_prepare(44100.0F, offsets.data(), &equaliser);
  equaliser_set_gain(6.5F, &equaliser);
  const auto overall = static_cast<float>(std::pow(10.0, double{6.5F * 0.05F}));
  for (size_t band = 0; band < 10; ++band) {
    const double a = std::pow(10.0, double{curve[band][1] + offsets[band]} * 0.025);
    const double w = double{curve[band][0]} * 2.0 * std::numbers::pi / 44100.0;
    const double alpha = std::sin(w) / 2.0;  // Q is 1
    for (const eq_section* const section : {&equaliser.left[band], &equaliser.right[band]}) {
      EXPECT_EQ(section->b0, static_cast<float>(1.0 + alpha * a)) << band;
      EXPECT_EQ(section->b1, static_cast<float>(-2.0 * std::cos(w))) << band;
      EXPECT_EQ(section->b2, static_cast<float>(1.0 - alpha * a)) << band;
      EXPECT_EQ(section->a0, static_cast<float>(1.0 + alpha / a)) << band;
      EXPECT_EQ(section->a1, section->b1) << band;
      EXPECT_EQ(section->a2, static_cast<float>(1.0 - alpha / a)) << band;
      EXPECT_EQ(section->flat_a0, static_cast<float>(1.0 + alpha)) << band;
      EXPECT_EQ(section->flat_a1, section->b1) << band;
      EXPECT_EQ(section->flat_a2, static_cast<float>(1.0 - alpha)) << band;
      EXPECT_EQ(section->gain, static_cast<float>(std::pow(double{overall}, double{0.1F}))) << band;
    }
  }
}

}  // namespace
