// MIT License. Tests of the wave store: random source, sample loops, shapes and what the oscillators' buffers hold.
#include "dsp/wave_store.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <span>
#include <thread>
#include <vector>

#include "dsp/convert.h"
#include "dsp/noise.h"

// What the build embeds, before the builders' own limit.
extern const unsigned int kesrel_loop0_size, kesrel_loop1_size, kesrel_loop2_size;
extern const unsigned int kesrel_loop3_size, kesrel_loop4_size, kesrel_loop5_size;

namespace {

constexpr double pi = std::numbers::pi;

std::unique_ptr<wsyn_state> with_all_loops() {
  auto state = std::make_unique<wsyn_state>();
  for (const auto build : {wsyn_build_loop0, wsyn_build_loop1, wsyn_build_loop2, wsyn_build_loop3, wsyn_build_loop4,
                           wsyn_build_loop5, wsyn_build_loop6}) {
    build(state.get());
  }
  return state;
}

std::vector<std::span<const float>> loop_tables(const wsyn_state& state) {
  return {state.loop_table0, state.loop_table1, state.loop_table2, state.loop_table3,
          state.loop_table4, state.loop_table5, state.loop_table6};
}

// --- Conversion and random source ---

TEST(Truncate, GoesTowardsZeroAndGivesTheSmallestIntegerOutsideTheRange) {
  constexpr int32_t outside = std::numeric_limits<int32_t>::min();
  EXPECT_EQ(truncate_to_int32(2.9f), 2);
  EXPECT_EQ(truncate_to_int32(-2.9f), -2);
  EXPECT_EQ(truncate_to_int32(2147483520.0f), 2147483520);
  EXPECT_EQ(truncate_to_int32(2147483647.5), 2147483647);
  EXPECT_EQ(truncate_to_int32(-2147483647.5), -2147483647);
  for (const float value : {2147483648.0f, -2147483648.0f, 1e30f, -HUGE_VALF, HUGE_VALF, std::nanf("")}) {
    EXPECT_EQ(truncate_to_int32(value), outside) << value;
    EXPECT_EQ(truncate_to_int32(static_cast<double>(value)), outside) << value;
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

TEST(SampleLoops, SourcesHaveExactlyTheBytesThatTheBuildersTake) {
  const unsigned int embedded[] = {kesrel_loop0_size, kesrel_loop1_size, kesrel_loop2_size,
                                   kesrel_loop3_size, kesrel_loop4_size, kesrel_loop5_size};
  for (int32_t wave = 0; wave < noise_loop; ++wave) {
    const auto length = static_cast<size_t>(sample_loops[static_cast<size_t>(wave)].source_length);
    EXPECT_EQ(embedded[wave], length) << "loop " << wave;
    EXPECT_EQ(sample_loop_source(wave).size(), length) << "loop " << wave;
  }
  for (const int32_t wave : {-1, noise_loop, 7}) EXPECT_TRUE(sample_loop_source(wave).empty()) << "loop " << wave;
}

TEST(SampleLoops, OctaveOffsetsBringTheRootKeyToTheStoredSpeed) {
  for (const sample_loop& loop : std::span(sample_loops).first(noise_loop)) {
    const double step = 3.0375 * std::exp2((loop.root_key - 60) / 12.0 + loop.octave_offset);
    EXPECT_NEAR(1200.0 * std::log2(step), 0.0, 4.0) << "cents at key " << loop.root_key;
  }
}

TEST(SampleLoops, DecodeToTheSumOfTheirStepsAndFillTheirTables) {
  const auto state = with_all_loops();
  const auto tables = loop_tables(*state);
  for (size_t wave = 0; wave < noise_loop; ++wave) {
    const auto source = sample_loop_source(static_cast<int32_t>(wave));
    int64_t sum = 0;
    float peak = 0.0f;
    for (size_t i = 0; i < source.size(); ++i) {
      sum += source[i];
      peak = std::max(peak, std::fabs(tables[wave][i]));
      if (wave == 4 && i < 2048) continue;  // cross-faded
      // 0.01 allows for the roundings of 64000 sums.
      ASSERT_NEAR(tables[wave][i], static_cast<double>(sum) * sample_loops[wave].delta_scale() / 16384.0, 0.01)
          << "loop " << wave << " entry " << i;
    }
    EXPECT_NEAR(peak, 2.0f, 0.1f) << "loop " << wave;
    EXPECT_EQ(state->loop_length[wave], static_cast<float>(sample_loops[wave].loop_length));
  }
}

TEST(SampleLoops, TheFirstEntriesAreRoundedAtEveryStep) {
  const auto state = with_all_loops();
  const auto source = sample_loop_source(1);
  float sum = 0.0f;
  for (size_t i = 0; i < source.size(); ++i) {
    sum = static_cast<float>(double(source[i]) * (8177.0 / 127.0) + double(sum));
    ASSERT_EQ(state->loop_table1[i], sum * 6.1035156e-05f) << "entry " << i;
  }
}

TEST(SampleLoops, LoopZeroReadsTheSameForwardsAndBackwards) {
  const auto state = with_all_loops();
  const std::span<const float> table = state->loop_table0;
  EXPECT_TRUE(std::equal(table.begin(), table.end(), table.rbegin()));
  EXPECT_NE(table[44519], table[44518]);
}

TEST(SampleLoops, LoopFourFadesFromBehindItsWrapIntoItsHead) {
  const auto state = with_all_loops();
  const std::span<const float> table = state->loop_table4;
  const auto source = sample_loop_source(4);
  EXPECT_EQ(table[0], table[62052]);
  int64_t sum = 0;
  for (size_t k = 0; k < 2048; ++k) {
    sum += source[k];
    const double plain = static_cast<double>(sum) * sample_loops[4].delta_scale() / 16384.0;
    const double weight = std::sqrt(static_cast<double>(k) / 2048.0);
    ASSERT_NEAR(table[k], (1.0 - weight) * table[k + 62052] + weight * plain, 1e-3) << "entry " << k;
  }
}

TEST(SampleLoops, LoopSixIsEvenWhiteNoise) {
  const auto state = with_all_loops();
  const auto [lowest, highest] = std::ranges::minmax(state->loop_table6);
  EXPECT_GE(lowest, -1.0f);
  EXPECT_LE(highest, 1.0f);
  double sum = 0.0, squares = 0.0, neighbours = 0.0;
  for (size_t i = 0; i + 1 < std::size(state->loop_table6); ++i) {
    const double x = state->loop_table6[i];
    sum += x, squares += x * x, neighbours += x * static_cast<double>(state->loop_table6[i + 1]);
  }
  EXPECT_NEAR(sum / 60000, 0.0, 0.01);
  EXPECT_NEAR(squares / 60000, 1.0 / 3.0, 0.01);
  EXPECT_NEAR(neighbours / 60000, 0.0, 0.01);
}

// --- Voice buffers ---

TEST(VoiceWave, HoldsTheLoopAndSilenceBehindIt) {
  const auto state = with_all_loops();
  const auto tables = loop_tables(*state);
  for (int32_t wave = 0; wave < sample_loop_count; ++wave) {
    const auto table = tables[static_cast<size_t>(wave)];
    std::ranges::fill(state->voice_wave2, 9.0f);
    state->wave2 = wave;
    wsyn_load_voice_wave2(state.get());
    EXPECT_EQ(state->wrap2, sample_loops[static_cast<size_t>(wave)].loop_length);
    EXPECT_TRUE(std::ranges::equal(table, std::span(state->voice_wave2).first(table.size()))) << "loop " << wave;
    EXPECT_TRUE(
        std::ranges::all_of(std::span(state->voice_wave2).subspan(table.size()), [](float x) { return x == 0.0f; }));
  }
}

TEST(VoiceWave, IsSilentForANumberWithoutALoop) {
  const auto state = std::make_unique<wsyn_state>();
  for (const int32_t wave : {-1, 7, std::numeric_limits<int32_t>::min()}) {
    std::ranges::fill(state->voice_wave1, 9.0f);
    state->wave1 = wave;
    wsyn_load_voice_wave1(state.get());
    EXPECT_EQ(state->wrap1, 10000);
    EXPECT_TRUE(std::ranges::all_of(state->voice_wave1, [](float x) { return x == 0.0f; })) << "loop " << wave;
  }
}

// --- Shapes ---

double clamped(double x) {
  return std::min(std::max(x, -1.0), 1.0);
}

// The shapes once more, from their definitions in double precision throughout.
double exact_shape(int32_t shape, double x) {
  using std::sin, std::tan;
  switch (shape) {
    case 0: {
      double saw = 0.0;
      for (int n = 1; n <= 12; ++n) saw += (n % 2 == 1 ? 1.0 : -1.0) * (n == 1 ? 1.0 : 2.0 / n) * sin(n * x);
      return (saw * 0.5 + clamped(tan(x / 2) / 8) * 0.35) * 0.5;
    }
    case 1:
      return x / pi - 1;
    case 2:
      return sin(x + sin(x + sin(x + sin(x + sin(x)))));
    case 3:
      return 0.4 * tan(1.2 * sin(x));
    case 4:
      return sin(2 * sin(2 * sin(2 * sin(2 * sin(2 * sin(x))))));
    case 5:
      return sin(x + sin(2 * x + sin(2 * x + sin(2 * x + sin(2 * x)))));
    case 6:
      return 1.18839 * sin(sin(x));
    case 7:
      return 6 * (sin(x) - sin(sin(x)));
    case 8:
      return clamped(tan(x / 2));
    default:
      return 0.0;
  }
}

TEST(Shape, FollowsItsDefinitionOverTheWholeCycle) {
  for (int32_t shape = 0; shape <= 8; ++shape) {
    std::vector<float> table(wsyn_shape_entries);
    wsyn_fill_shape(shape, std::span<float, wsyn_shape_entries>(table));
    for (size_t i = 0; i < wsyn_shape_cycle; ++i) {
      // The tangent's pole at half a cycle turns on the last bit of the angle.
      if ((shape == 0 || shape == 8) && i == 512) continue;
      ASSERT_NEAR(table[i], exact_shape(shape, 2 * pi * static_cast<double>(i) / 1024), 2e-5)
          << "shape " << shape << " entry " << i;
    }
    EXPECT_EQ(table[1024], table[0]) << "guard point of shape " << shape;
  }
}

TEST(Shape, ReducesItsAngleWithTheSignOfTheAngle) {
  EXPECT_EQ(wsyn_shape_value(1, 6.2831855f), -1.0f);
  EXPECT_NEAR(wsyn_shape_value(1, 7.0f), exact_shape(1, 7.0 - 2 * pi), 1e-6);
  EXPECT_NEAR(wsyn_shape_value(1, -7.0f), exact_shape(1, 2 * pi - 7.0), 1e-6);
}

TEST(Shape, NumbersBeyondNineAreSilent) {
  for (const int32_t shape : {10, 11, -1, std::numeric_limits<int32_t>::min()}) {
    for (const float t : {0.5f, 2.0f, 4.0f}) EXPECT_EQ(wsyn_shape_value(shape, t), 0.0f) << "shape " << shape;
  }
}

TEST(Shape, NumberNineIsNewNoiseAtEveryFill) {
  std::vector<float> first(wsyn_shape_entries), second(wsyn_shape_entries);
  wsyn_fill_shape(9, std::span<float, wsyn_shape_entries>(first));
  wsyn_fill_shape(9, std::span<float, wsyn_shape_entries>(second));
  EXPECT_NE(first, second);
  EXPECT_NE(first[1024], first[0]);
  EXPECT_LE(std::fabs(*std::ranges::max_element(first, {}, [](float x) { return std::fabs(x); })), 1.0f);
}

TEST(SineTable, IsOneCycle) {
  const auto state = std::make_unique<wsyn_state>();
  wsyn_build_sine_table(state.get());
  for (size_t i = 0; i < 1024; ++i) {
    ASSERT_NEAR(state->sine_table[i], std::sin(2 * pi * static_cast<double>(i) / 1024), 1e-7) << "entry " << i;
  }
}

}  // namespace
