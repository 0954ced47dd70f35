// MIT License. The constants of the synthesizer and the wavelet transform, stated independently.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>
#include <vector>

#include "dsp/filter_sets.h"
#include "dsp/oscillators.h"
#include "dsp/sample_loops.h"

namespace {

// --- Filter sets of modes 12 to 14 ---

// clang-format off
const std::vector<float> daubechies_4 = {0.482962906F, 0.836516321F, 0.224143863F, -0.129409522F};
const std::vector<float> daubechies_6 = {
    0.33267054F, 0.806891501F, 0.459877491F, -0.135011017F, -0.0854412764F, 0.0352262929F};
const std::vector<float> daubechies_76 = {
    1.71615244e-18F, -4.30459695e-17F, 4.40530692e-16F, -2.04509964e-15F,
    4.56339741e-16F, 4.24981773e-14F, -1.80866119e-13F, -2.62649653e-14F,
    2.48478928e-12F, -6.29153717e-12F, -1.10169296e-11F, 8.27825655e-11F,
    -6.73233622e-11F, -5.26113264e-10F, 1.34919775e-09F, 1.4363295e-09F,
    -1.0347045e-08F, 5.42427481e-09F, 4.88475784e-08F, -8.40035099e-08F,
    -1.39637748e-07F, 5.1877339e-07F, 8.48708765e-08F, -2.14996021e-06F,
    1.55084433e-06F, 6.45673026e-06F, -1.0373592e-05F, -1.33417616e-05F,
    4.17514166e-05F, 1.15540906e-05F, -0.000126204337F, 4.55568261e-05F,
    0.000303102046F, -0.000281763932F, -0.000581075961F, 0.000942461425F,
    0.000844862661F, -0.00240069767F, -0.000716982177F, 0.00507131452F,
    -0.000562571571F, -0.00921478495F, 0.00413130643F, 0.0147018824F,
    -0.0112904971F, -0.0209046453F, 0.0231141336F, 0.0268914942F,
    -0.0400549807F, -0.0319898762F, 0.0617662072F, 0.0366051048F,
    -0.0872043967F, -0.0430958942F, 0.11473117F, 0.0565864593F,
    -0.141414732F, -0.0856381208F, 0.159912571F, 0.14179568F,
    -0.14998512F, -0.232125968F, 0.0622665063F, 0.321675628F,
    0.182867661F, -0.213050574F, -0.493356079F, -0.496591181F,
    -0.330775768F, -0.160071999F, -0.0578899421F, -0.0156372488F,
    -0.0030830882F, -0.000421170262F, -3.57625213e-05F, -1.42577665e-06F,
};
// clang-format on

TEST(Tables, HoldTheTapsOfTheSetsInUse) {
  const std::pair<int32_t, const std::vector<float>&> sets[] = {
      {2, daubechies_4}, {3, daubechies_6}, {10, daubechies_76}};
  for (const auto& [number, taps] : sets) {
    const filter_set& set = *filter_set_of_number(number);
    const auto size = static_cast<int32_t>(taps.size());
    ASSERT_EQ(set.analysis_low.size, size);
    EXPECT_EQ(set.symmetric, 0);
    EXPECT_EQ(set.analysis_low.first_index, 0);
    EXPECT_EQ(set.analysis_high.first_index, 2 - size);
    for (size_t i = 0; i < taps.size(); ++i) {
      const float mirrored = (i % 2 == 0 ? -1.0F : 1.0F) * taps[i];
      EXPECT_EQ(set.analysis_low.coefficients[i], taps[i]) << number << ", " << i;
      EXPECT_EQ(set.synthesis_low.coefficients[i], taps[i]) << number << ", " << i;
      EXPECT_EQ(set.analysis_high.coefficients[taps.size() - 1 - i], mirrored) << number << ", " << i;
      EXPECT_EQ(set.synthesis_high.coefficients[taps.size() - 1 - i], mirrored) << number << ", " << i;
    }
  }
}

// --- Sample loops ---

TEST(Tables, DescribeTheLoops) {
  // clang-format off
  constexpr sample_loop loops[] = {
      {44520,  2740, 89039, 89037, 50, -0.7666666666666666},
      {29292,  8177, 29292, 29290, 60, -1.6},
      {31744, 13088, 31744, 31743, 72, -2.5999999999999996},
      {26771,  6063, 26771, 26769, 62, -1.7666666666666666},
      {64101,  3803, 64101, 62052, 42, -0.10000000000000009},
      {26830,  7982, 26830, 26828, 57, -1.35},
      {    0,     0, 60001, 60000,  0,  0.0}};
  // clang-format on
  ASSERT_EQ(sample_loops.size(), std::size(loops));
  const auto state = std::make_unique<wsyn_state>();
  std::array<float, wsyn_param_count> params{};
  params[3] = 1.0F;  // loops
  for (size_t i = 0; i < std::size(loops); ++i) {
    EXPECT_EQ(sample_loops[i].source_length, loops[i].source_length) << i;
    EXPECT_EQ(sample_loops[i].largest_step, loops[i].largest_step) << i;
    EXPECT_EQ(sample_loops[i].entries, loops[i].entries) << i;
    EXPECT_EQ(sample_loops[i].root_key, loops[i].root_key) << i;
    params[4] = params[5] = static_cast<float>(i);
    wsyn_commit(params.data(), state.get());
    EXPECT_EQ(state->loop_length[i], static_cast<float>(loops[i].loop_length));
    EXPECT_EQ(state->wrap1, loops[i].loop_length);
    EXPECT_EQ(state->wrap2, loops[i].loop_length);
    EXPECT_EQ(state->tune1, loops[i].octave_offset);
    EXPECT_EQ(state->tune2, loops[i].octave_offset);
  }
}

// --- Pitch, filter and wave shaper ---

TEST(Tables, FormPitchAndFilterFromTheirParameters) {
  const auto state = std::make_unique<wsyn_state>();
  const std::array<float, wsyn_param_count> params = {1.01F,  432.0F, 0.0F,  0.0F,  1.0F, 2.0F,  0.0F,
                                                      0.0F,   7.0F,   31.0F, 0.0F,  0.3F, 0.25F, -5.0F,
                                                      -12.0F, 1.0F,   0.4F,  0.75F, 0.6F, 0.35F, 0.2F};
  wsyn_commit(params.data(), state.get());
  EXPECT_EQ(state->scaled_pitch, 432.0F * 1.01F);
  EXPECT_DOUBLE_EQ(state->base_step, std::exp2(0.25) * double{432.0F * 1.01F} * (256.0 / 44100.0));
  EXPECT_DOUBLE_EQ(state->tune1, double{31.0F * 0.00083333335F} + double{7.0F * 0.083333336F} - 2.0 / 1200.0);
  EXPECT_DOUBLE_EQ(state->tune2, double{-12.0F * 0.00083333335F} + double{-5.0F * 0.083333336F} - 2.0 / 1200.0);
  for (int note = 0; note < 128; ++note) {
    EXPECT_DOUBLE_EQ(state->note_ratio1[note], std::exp2((note - 60) * (1.0 / 12.0) + state->tune1)) << note;
    EXPECT_DOUBLE_EQ(state->note_ratio2[note], std::exp2((note - 60) * (1.0 / 12.0) + state->tune2)) << note;
  }
  EXPECT_EQ(state->lfo_step1, 8.0F);
  EXPECT_EQ(state->lfo_step2, 72.0F);
  EXPECT_EQ(state->cutoff_target, 0.6F * 0.8F);
  EXPECT_EQ(state->cutoff_now, 0.6F * 0.8F * 0.00033322227F);  // one step from 0
  EXPECT_EQ(state->filter_gain, static_cast<float>(double{0.35F * 2.0F - 0.35F * 0.35F} * 2.2079999999999997));
  const float c = state->cutoff_now;
  const float feedback = static_cast<float>(std::pow(double{1.0F - c}, 6.0)) * 100.0F;
  EXPECT_EQ(state->filter_feedback, feedback);
  EXPECT_EQ(state->filter_scale, 1.0F / (feedback + 1.0F));
  EXPECT_EQ(state->filter_amount, (c + 1.0F) * 0.5F * state->filter_gain);
  EXPECT_EQ(state->shaper_drive, 0.8F);
  for (int i = 0; i < 1024; ++i) {
    EXPECT_EQ(state->sine_table[i], static_cast<float>(std::sin(i * 0.006135923151542565))) << i;
  }
}

}  // namespace
