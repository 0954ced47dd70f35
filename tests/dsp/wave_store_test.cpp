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

// A synthesizer after its first commit.
std::unique_ptr<wsyn_state> committed() {
  auto state = std::make_unique<wsyn_state>();
  wsyn_commit(std::array<float, wsyn_param_count>().data(), state.get());
  return state;
}

std::span<const float> wave_of(int32_t number, wsyn_state* state) {
  return *wsyn_voice_wave_of(number, state);
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

TEST(NoiseRand, SkipsNumbersAsIfTheyWereDrawn) {
  uint32_t state = 0x89abcdefU;
  for (uint32_t count = 0; count < 1000; ++count) {
    ASSERT_EQ(noise_state_after(0x89abcdefU, count), state) << count;
    noise_next(&state);
  }
}

// --- Sample loops ---

TEST(SampleLoops, DecodeToTheSumOfTheirStepsRoundedAtEachAndPlayTheirRootKeyAtTheStoredSpeed) {
  for (size_t wave = 0; wave < noise_loop; ++wave) {
    const auto source = sample_loop_source(static_cast<int32_t>(wave));
    const std::span<const float> table = shared_wave_store().loops[wave];
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
    EXPECT_EQ(wsyn_wrap_of(static_cast<int32_t>(wave)), loop.loop_length);
    const auto entries = static_cast<size_t>(loop.entries);
    EXPECT_NE(table[entries - 1], 0.0f) << "loop " << wave;
    EXPECT_TRUE(std::ranges::all_of(table.subspan(entries), [](float x) { return x == 0.0f; })) << "loop " << wave;
    const double step = 3.0375 * std::exp2((loop.root_key - 60) / 12.0 + loop.octave_offset);
    EXPECT_NEAR(1200.0 * std::log2(step), 0.0, 4.0) << "cents of loop " << wave;
  }
  for (const int32_t wave : {-1, noise_loop, 7}) EXPECT_TRUE(sample_loop_source(wave).empty()) << "loop " << wave;
}

TEST(SampleLoops, LoopZeroReadsTheSameBackwards) {
  const auto mirrored = std::span(shared_wave_store().loops[0]).first(89039);
  EXPECT_TRUE(std::equal(mirrored.begin(), mirrored.end(), mirrored.rbegin()));
}

TEST(SampleLoops, AreSharedBySynthesizersAndNumbersWithoutOneAreSilent) {
  const auto state = committed(), other = committed();
  for (int32_t wave = 0; wave < noise_loop; ++wave)
    EXPECT_EQ(wsyn_voice_wave_of(wave, state.get()), wsyn_voice_wave_of(wave, other.get()));
  for (const int32_t none : {-1, 7, std::numeric_limits<int32_t>::min()}) {
    EXPECT_EQ(wsyn_wrap_of(none), 10000);
    EXPECT_TRUE(std::ranges::all_of(wave_of(none, state.get()), [](float x) { return x == 0.0f; })) << none;
  }
}

TEST(SharedWaveStore, IsMadeOnceByWhicheverThreadAsksFirst) {
  std::array<const wave_store*, 4> seen{};
  std::vector<std::thread> threads;
  for (auto& store : seen) threads.emplace_back([&store] { store = &shared_wave_store(); });
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(std::ranges::all_of(seen, [&](const wave_store* store) { return store == seen[0]; }));
  EXPECT_EQ(seen[0]->sine_table[256], 1.0f);
}

// --- The noise loop ---

TEST(NoiseLoop, IsWhatTheThreadsGeneratorDrawsAtTheFirstCommitHoweverLateItIsPlayed) {
  noise_state = 12345U;
  const auto state = committed();
  const uint32_t left_behind = noise_state;
  noise_state = 12345U;
  std::vector<float> drawn(60001);
  for (float& entry : drawn) entry = wsyn_shape_value(9, 0.0f);
  EXPECT_EQ(noise_state, left_behind);

  noise_state = 1U;
  const std::span<const float> played = wave_of(noise_loop, state.get());
  EXPECT_EQ(noise_state, 1U) << "playing draws nothing";
  EXPECT_TRUE(std::ranges::equal(played.first(60001), drawn));
  EXPECT_TRUE(std::ranges::all_of(played.subspan(60001), [](float x) { return x == 0.0f; }));
  EXPECT_EQ(wsyn_wrap_of(noise_loop), 60000);
  EXPECT_NE(wave_of(noise_loop, committed().get())[0], drawn[0]) << "another draw, another noise";
}

TEST(NoiseLoop, IsEvenAndWhite) {
  const auto state = committed();
  double sum = 0.0, squares = 0.0, neighbours = 0.0, previous = 0.0;
  for (const float entry : wave_of(noise_loop, state.get()).first(60001)) {
    const double x = entry;
    ASSERT_LE(std::abs(x), 1.0);
    sum += x, squares += x * x, neighbours += x * previous, previous = x;
  }
  EXPECT_NEAR(sum / 60000, 0.0, 0.01);
  EXPECT_NEAR(squares / 60000, 1.0 / 3.0, 0.01);
  EXPECT_NEAR(neighbours / 60000, 0.0, 0.01);
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
      const auto angle = static_cast<float>(static_cast<double>(i) * 0.006135923151542565);
      ASSERT_EQ(table[i], wsyn_shape_value(static_cast<int32_t>(shape), angle)) << "shape " << shape << " entry " << i;
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
