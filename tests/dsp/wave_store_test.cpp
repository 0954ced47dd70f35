// MIT License. Tests of the wave store: random source, sample loops, shapes and what the oscillators' buffers hold.
#include "dsp/wave_store.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <span>
#include <thread>
#include <vector>

#include "dsp/convert.h"
#include "dsp/noise.h"
#include "dsp/oscillators.h"

namespace {

constexpr double pi = std::numbers::pi;

// The first commit builds all loops.
std::unique_ptr<wsyn_state> with_all_loops() {
  auto state = std::make_unique<wsyn_state>();
  wsyn_commit(std::array<float, wsyn_param_count>().data(), state.get());
  return state;
}

std::vector<std::span<const float>> loop_tables(const wsyn_state& state) {
  return {state.loop_table0, state.loop_table1, state.loop_table2, state.loop_table3,
          state.loop_table4, state.loop_table5, state.loop_table6};
}

// --- Conversion and random source ---

TEST(Truncate, GoesTowardsZeroAndGivesTheSmallestIntegerOutsideTheRange) {
  EXPECT_EQ(truncate_to_int32(2.9f), 2);
  EXPECT_EQ(truncate_to_int32(-2.9f), -2);
  EXPECT_EQ(truncate_to_int32(2147483520.0f), 2147483520);
  EXPECT_EQ(truncate_to_int32(2147483647.5), 2147483647);
  EXPECT_EQ(truncate_to_int32(-2147483647.5), -2147483647);
  for (const float value : {2147483648.0f, -2147483648.0f, 1e30f, -HUGE_VALF, HUGE_VALF, NAN}) {
    EXPECT_EQ(truncate_to_int32(value), std::numeric_limits<int32_t>::min()) << value;
    EXPECT_EQ(truncate_to_int32(static_cast<double>(value)), std::numeric_limits<int32_t>::min()) << value;
  }
}

TEST(NoiseRand, IsTheSameSequenceInEveryThread) {
  for (int round = 0; round < 2; ++round) {
    std::vector<int32_t> values(5);
    std::thread([&] { std::generate(values.begin(), values.end(), noise_rand); }).join();
    EXPECT_EQ(values, (std::vector<int32_t>{41, 18467, 6334, 26500, 19169}));
  }
}

// --- Sample loops ---

TEST(SampleLoops, DecodeToTheSumOfTheirStepsRoundedAtEachAndPlayTheirRootKeyAtTheStoredSpeed) {
  const auto state = with_all_loops();
  for (size_t wave = 0; wave < noise_loop; ++wave) {
    const auto source = sample_loop_source(static_cast<int32_t>(wave));
    const std::span<const float> table = loop_tables(*state)[wave];
    const sample_loop& loop = sample_loops[wave];
    ASSERT_EQ(source.size(), static_cast<size_t>(loop.source_length));
    float sum = 0.0f;
    float peak = 0.0f;
    for (size_t i = 0; i < source.size(); ++i) {
      sum = static_cast<float>(source[i] * (loop.largest_step / 127.0) + static_cast<double>(sum));
      peak = std::max(peak, std::fabs(table[i]));
      float expected = sum / 16384.0f;
      if (wave == 4 && i < 2048) {  // fades in from what follows the wrap
        const float weight = std::sqrt(static_cast<float>(i) / 2048.0f);
        expected = (1.0f - weight) * table[i + 62052] + weight * expected;
      }
      ASSERT_EQ(table[i], expected) << "loop " << wave << " entry " << i;
    }
    EXPECT_NEAR(peak, 2.0f, 0.1f) << "loop " << wave;
    EXPECT_EQ(state->loop_length[wave], static_cast<float>(loop.loop_length));
    const double step = 3.0375 * std::exp2((loop.root_key - 60) / 12.0 + loop.octave_offset);
    EXPECT_NEAR(1200.0 * std::log2(step), 0.0, 4.0) << "cents of loop " << wave;
  }
  for (const int32_t wave : {-1, noise_loop, 7}) EXPECT_TRUE(sample_loop_source(wave).empty()) << "loop " << wave;
}

TEST(SampleLoops, LoopZeroReadsTheSameBackwardsAndLoopSixIsEvenWhiteNoise) {
  const auto state = with_all_loops();
  const std::span<const float> mirrored = state->loop_table0;
  EXPECT_TRUE(std::equal(mirrored.begin(), mirrored.end(), mirrored.rbegin()));
  double sum = 0.0, squares = 0.0, neighbours = 0.0, previous = 0.0;
  for (const float entry : state->loop_table6) {
    const double x = entry;
    ASSERT_LE(std::abs(x), 1.0);
    sum += x, squares += x * x, neighbours += x * previous, previous = x;
  }
  EXPECT_NEAR(sum / 60000, 0.0, 0.01);
  EXPECT_NEAR(squares / 60000, 1.0 / 3.0, 0.01);
  EXPECT_NEAR(neighbours / 60000, 0.0, 0.01);
}

// --- Voice buffers ---

TEST(VoiceWave, HoldsTheLoopOfItsNumberFollowedBySilence) {
  const auto state = with_all_loops();
  for (const int32_t wave : {0, 1, 2, 3, 4, 5, 6, -1, 7, std::numeric_limits<int32_t>::min()}) {
    const auto number = static_cast<size_t>(wave);
    const bool exists = number < sample_loop_count;
    std::vector<float> expected(wsyn_voice_wave_entries);
    if (exists) std::ranges::copy(loop_tables(*state)[number], expected.begin());
    std::ranges::fill(state->voice_wave2, 9.0f);
    const int32_t wrap = wsyn_load_voice_wave(wave, *state, state->voice_wave2);
    EXPECT_TRUE(std::ranges::equal(state->voice_wave2, expected)) << "loop " << wave;
    EXPECT_EQ(wrap, exists ? sample_loops[number].loop_length : 10000);
  }
}

// --- Shapes ---

// The shapes once more, from their definitions in double precision throughout.
double (*const exact_shapes[])(double) = {
    [](double x) {
      double saw = sin(x);
      for (int n = 2; n <= 12; ++n) saw += (n % 2 == 1 ? 2.0 : -2.0) / n * sin(n * x);
      return (saw * 0.5 + std::clamp(tan(x / 2) / 8, -1.0, 1.0) * 0.35) * 0.5;
    },
    [](double x) { return x / pi - 1; },
    [](double x) { return sin(x + sin(x + sin(x + sin(x + sin(x))))); },
    [](double x) { return 0.4 * tan(1.2 * sin(x)); },
    [](double x) { return sin(2 * sin(2 * sin(2 * sin(2 * sin(2 * sin(x)))))); },
    [](double x) { return sin(x + sin(2 * x + sin(2 * x + sin(2 * x + sin(2 * x))))); },
    [](double x) { return 1.18839 * sin(sin(x)); },
    [](double x) { return 6 * (sin(x) - sin(sin(x))); },
    [](double x) { return std::clamp(tan(x / 2), -1.0, 1.0); },
};

TEST(Shape, FollowsItsDefinitionOverTheWholeCycle) {
  std::array<float, wsyn_shape_entries> table;
  for (size_t shape = 0; shape < std::size(exact_shapes); ++shape) {
    wsyn_fill_shape(static_cast<int32_t>(shape), table);
    for (size_t i = 0; i < wsyn_shape_cycle; ++i) {
      // The tangent's pole at half a cycle turns on the last bit of the angle.
      if ((shape == 0 || shape == 8) && i == 512) continue;
      const double x = 2 * pi * static_cast<double>(i) / 1024;
      ASSERT_NEAR(table[i], exact_shapes[shape](x), 2e-5) << "shape " << shape << " entry " << i;
    }
    EXPECT_EQ(table[1024], table[0]) << "guard point of shape " << shape;
  }
  // The angle is reduced with its sign.
  EXPECT_EQ(wsyn_shape_value(1, 6.2831855f), -1.0f);
  EXPECT_NEAR(wsyn_shape_value(1, 7.0f), exact_shapes[1](7.0 - 2 * pi), 1e-6);
  EXPECT_NEAR(wsyn_shape_value(1, -7.0f), exact_shapes[1](2 * pi - 7.0), 1e-6);
  for (const int32_t none : {10, -1, std::numeric_limits<int32_t>::min()}) {
    EXPECT_EQ(wsyn_shape_value(none, 2.0f), 0.0f) << "shape " << none;
  }
}

TEST(Shape, NumberNineIsNewNoiseEveryTime) {
  std::array<float, wsyn_shape_entries> first, second;
  wsyn_fill_shape(9, first);
  wsyn_fill_shape(9, second);
  EXPECT_NE(first, second);
  EXPECT_NE(first[1024], first[0]);
  EXPECT_TRUE(std::ranges::all_of(first, [](float x) { return std::fabs(x) <= 1.0f; }));
}

}  // namespace
