// MIT License.
#include "doors/core/rate_bridge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "tests/doors/core/sines.h"
#include "tests/words/heap.h"

namespace {

// Passes the voice on to the left and its negative to the right.
struct wire : core_stage {
  void run_core_block(const float* in, float* left, float* right) override {
    for (int32_t i = 0; i < core_block_frames; ++i) {
      left[i] = in[i];
      right[i] = -in[i];
    }
    blocks += 1;
  }
  int64_t blocks = 0;
};

// What comes out of `bridge` on the left, in pieces of the lengths that `next_length` gives.
template <typename Length>
waveform through(rate_bridge* bridge, const waveform& in, Length next_length) {
  wire stage;
  waveform left(in.size());
  waveform right(in.size());
  for (size_t first = 0; first < in.size();) {
    const size_t count = std::min<size_t>(in.size() - first, static_cast<size_t>(next_length()));
    bridge->process(in.data() + first, left.data() + first, right.data() + first, static_cast<int32_t>(count), &stage);
    first += count;
  }
  for (size_t i = 0; i < in.size(); ++i) EXPECT_EQ(left[i], -right[i]);
  return left;
}
int longest() {
  return rate_bridge::longest_piece;
}

class RateBridge : public testing::TestWithParam<double> {};

TEST_P(RateBridge, KeepsASineCleanAndLateByItsDelay) {
  const double rate = GetParam();
  rate_bridge bridge;
  bridge.prepare(rate);
  for (const double frequency : {100.0, 1000.0, 10000.0}) {
    bridge.reset();
    const waveform in = sine(frequency, rate, static_cast<int64_t>(rate));
    const heard_sine heard = hear(through(&bridge, in, longest), static_cast<size_t>(rate / 50) * 20, frequency, rate);
    EXPECT_GT(heard.distortion_db, 90) << frequency;
    EXPECT_NEAR(std::abs(heard.amplitude), 0.5, 0.0005) << frequency;
    // A sine is -i in phase.
    const double late = phase_of(frequency, rate, bridge.delay()) + std::arg(heard.amplitude) + std::numbers::pi / 2;
    const double frames = std::remainder(late, 2 * std::numbers::pi) / phase_of(frequency, rate, 1);
    EXPECT_NEAR(frames, 0, 0.001) << frequency;
  }
}

TEST_P(RateBridge, GivesTheSameInPiecesOfAnyLength) {
  std::minstd_rand random(3);
  rate_bridge bridge;
  bridge.prepare(GetParam());
  waveform noise(50000);
  for (float& sample : noise) sample = static_cast<float>(random()) / 2147483647.0F - 0.5F;
  const waveform expected = through(&bridge, noise, longest);
  for (const int length : {1, 37, 0}) {
    bridge.reset();
    const int64_t before = allocation_count();
    const waveform found = through(&bridge, noise, [&] {
      return length > 0 ? length : 1 + static_cast<int>(random() % rate_bridge::longest_piece);
    });
    EXPECT_LE(allocation_count() - before, 2) << "but the two of the test";
    EXPECT_EQ(found, expected) << length;
  }
}

// Each frame has its sample, and core_position() its time.
TEST_P(RateBridge, NeverRunsOut) {
  const double rate = GetParam();
  rate_bridge bridge;
  bridge.prepare(rate);
  wire stage;
  float left = 0;
  float right = 0;
  const float one = 1;
  for (int64_t frame = 0; frame < bridge.delay() + 20000; ++frame) {
    const auto due = static_cast<double>(bridge.core_position(0));
    EXPECT_NEAR(due, std::ceil(static_cast<double>(frame) * 44100 / rate - 1e-6), 0);
    bridge.process(&one, &left, &right, 1, &stage);
    if (frame > 2 * bridge.delay()) {
      ASSERT_NEAR(left, 1, 0.001) << frame;
    }
  }
  EXPECT_EQ(bridge.next_core_block(), stage.blocks * core_block_frames);
}

INSTANTIATE_TEST_SUITE_P(Rates, RateBridge,
                         testing::Values(44100, 48000, 88200, 96000, 176400, 192000, 32000, 22050 * 16));

TEST(RateBridgeAtTheCoreRate, ChangesNoSample) {
  rate_bridge bridge;
  EXPECT_EQ(bridge.delay(), core_block_frames - 1);
  const waveform in = sine(997, 44100, 5000);
  const waveform out = through(&bridge, in, [] { return 100; });
  EXPECT_TRUE(std::equal(in.begin(), in.end() - bridge.delay(), out.begin() + bridge.delay()));
}

TEST(RateBridgeAtOddRates, StaysWithinItsLimits) {
  rate_bridge bridge;
  for (const double rate : {8000.0, 11025.0, 47999.37, 768000.0, 1.0, 1e9, std::nan(""), -48000.0}) {
    bridge.prepare(rate);
    const waveform in(static_cast<size_t>(bridge.delay() * 3 + 1000), 0.25F);
    EXPECT_NEAR(through(&bridge, in, longest).back(), 0.25, 0.001) << rate;
  }
}

}  // namespace
