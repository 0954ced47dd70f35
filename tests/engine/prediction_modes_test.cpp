// MIT License.
#include "engine/prediction_modes.h"

#include <gtest/gtest.h>

#include "dsp/linear_prediction.h"
#include "engine/dc_block.h"
#include "engine/frame_arena.h"
#include "tests/engine/engine_words.h"

namespace {

constexpr int32_t frame_length = 1024;
constexpr float quantum = 3.051851e-05F;

waveform without_dc(waveform x) {
  dc_block(x.data(), static_cast<int32_t>(x.size()));
  return x;
}

waveform vocode(int32_t order, waveform modulator, const waveform& carrier) {
  static lpc_workspace workspace;
  static frame_arena arena;
  vocoder_prediction(order, modulator.data(), carrier.data(), static_cast<int32_t>(modulator.size()), &workspace,
                     &arena);
  return modulator;
}

constexpr int32_t orders[] = {10, 35, 80};

TEST(DcBlock, FollowsItsRecursionWithinTheQuantum) {
  const waveform x = noise(4096, 0.9F);
  const waveform y = without_dc(x);
  double expected = 0.0;
  for (size_t t = 0; t < x.size(); ++t) {
    expected = x[t] - (t == 0 ? 0.0 : double{x[t - 1]}) + (1.0 - 1.0 / 1024.0) * expected;
    ASSERT_NEAR(y[t], expected, 4 * quantum) << t;
    ASSERT_EQ(y[t], std::round(y[t] / quantum) * quantum) << t;
  }
}

TEST(DcBlock, RoundsItsInputTowardsZeroAndItsOutputDownAndAcceptsAnySample) {
  EXPECT_EQ(without_dc({0.99F * quantum, 0.0F})[0], 0.0F);
  EXPECT_EQ(without_dc({-0.99F * quantum, 0.0F})[0], 0.0F);
  // A step of 1.5 quanta up counts as one, and its decay falls below the quantum at once.
  EXPECT_EQ(without_dc({1.5F * quantum, 1.5F * quantum}), (waveform{quantum, 0.0F}));
  EXPECT_EQ(without_dc({-1.5F * quantum, -1.5F * quantum}), (waveform{-quantum, -quantum}));
  EXPECT_TRUE(all_finite(without_dc({1e30F, -1e30F, NAN, INFINITY, 1.0F, -1.0F, 1.0F})));
}

TEST(Prediction, OfASignalWithItselfIsAQuarterOfItWithoutDc) {
  const waveform x = windowed(vowel(frame_length, 800.0, 0.5));
  const waveform expected = without_dc(x);
  for (const int32_t order : orders) {
    const waveform y = vocode(order, x, x);
    for (size_t t = 0; t < y.size(); ++t) ASSERT_NEAR(y[t], 0.25F * expected[t], 2e-5F) << order << ", " << t;
  }
}

TEST(Prediction, StaysFiniteOnPoorlyConditionedFramesAndIsSilentForSilence) {
  const waveform none = silence(frame_length);
  const waveform poor[] = {sine(frame_length, 11025.0, 1.0), waveform(frame_length, 1.0F),
                           noise(frame_length, 2.0F * quantum), windowed(sine(frame_length, 5000.0, 1.0)), none};
  for (const int32_t order : orders) {
    for (const waveform& one : poor) {
      for (const waveform& other : poor) EXPECT_TRUE(all_finite(vocode(order, one, other))) << order;
      EXPECT_EQ(vocode(order, one, none), none);
      EXPECT_EQ(vocode(order, none, one), none);
    }
  }
}

}  // namespace
