// MIT License. The constants of the synthesizer and the wavelet transform, stated independently.
#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <memory>
#include <sstream>
#include <tuple>

#include "dsp/filter_sets.h"
#include "dsp/oscillators.h"
#include "dsp/sample_loops.h"
#include "tests/words/hash.h"

namespace {

// --- Filter sets of modes 12 to 14 ---

// The taps as text, as they are given to nine digits.
TEST(Tables, HoldTheTapsOfTheSetsInUse) {
  const std::tuple<int32_t, size_t, uint64_t> sets[] = {
      {2, 4, 0x151C4E5E05E0966EU}, {3, 6, 0x3DB55601BE2D1D4FU}, {10, 76, 0x4EF9CC1D9CF1791U}};
  for (const auto& [number, size, expected] : sets) {
    const filter_set& set = *filter_set_of_number(number);
    ASSERT_EQ(set.analysis_low.size, static_cast<int32_t>(size));
    EXPECT_EQ(set.symmetric, 0);
    EXPECT_EQ(set.analysis_low.first_index, 0);
    EXPECT_EQ(set.analysis_high.first_index, 2 - set.analysis_low.size);
    std::ostringstream taps;
    taps << std::setprecision(9);
    for (size_t i = 0; i < size; ++i) {
      const float tap = set.analysis_low.coefficients[i];
      const float mirrored = (i % 2 == 0 ? -1.0F : 1.0F) * tap;
      taps << tap << '\n';
      EXPECT_EQ(set.synthesis_low.coefficients[i], tap) << number << ", " << i;
      EXPECT_EQ(set.analysis_high.coefficients[size - 1 - i], mirrored) << number << ", " << i;
      EXPECT_EQ(set.synthesis_high.coefficients[size - 1 - i], mirrored) << number << ", " << i;
    }
    EXPECT_EQ(fingerprint(taps.str()), expected) << taps.str();
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
    const auto fields = [](const sample_loop& x) {
      return std::tie(x.source_length, x.largest_step, x.entries, x.root_key);
    };
    EXPECT_EQ(fields(sample_loops[i]), fields(loops[i])) << i;
    params[4] = params[5] = static_cast<float>(i);
    wsyn_commit(params.data(), state.get());
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
  EXPECT_EQ(state->shaper_drive, 0.8F);
  for (int i = 0; i < 1024; ++i) {
    EXPECT_EQ(state->sine_table[i], static_cast<float>(std::sin(i * 0.006135923151542565))) << i;
  }
}

}  // namespace
