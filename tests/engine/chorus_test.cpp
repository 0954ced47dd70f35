// MIT License.
#include "engine/chorus.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

#include "engine/parameter_commit.h"
#include "engine/voco_process.h"
#include "engine/voco_state.h"
#include "tests/engine/engine_words.h"

namespace {

constexpr float nan_value = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

distance_delay fresh_delay(float position) {
  distance_delay delay;
  distance_delay_create(&delay);
  distance_delay_set(position, true, &delay);
  return delay;
}

// The judge of the ring: it remembers all that ever went in.
struct plain_delay {
  float delay = 0.0F;
  waveform past = silence(2000);

  float next(float in, float target) {
    delay = (delay * 3000.0F + target) * 0.00033322227F;
    const auto whole = static_cast<size_t>(delay);
    const float a = past[past.size() - whole];
    const float c = past[past.size() - whole - 1];
    past.push_back(in);
    return (c - a) * (delay - static_cast<float>(whole)) + a;
  }
};

TEST(DistanceDelay, IsAsLongAsSoundNeedsForTheDistanceAndKnowsItsLevel) {
  EXPECT_EQ(fresh_delay(0.0F).length, 1286);
  EXPECT_NEAR(fresh_delay(0.0F).delay, 128.57, 0.005);
  EXPECT_NEAR(fresh_delay(0.25F).delay, 321.43, 0.005);
  EXPECT_NEAR(fresh_delay(1.0F).delay, 1285.71, 0.005);
  for (const float near : {0.1F, 0.05F, -1.0F, -infinite, nan_value}) {
    EXPECT_NEAR(fresh_delay(near).delay, 128.57, 0.005) << near;
  }
  for (const float far : {1.5F, 1e30F, infinite}) EXPECT_NEAR(fresh_delay(far).delay, 1285.71, 0.005) << far;
  EXPECT_FLOAT_EQ(distance_delay_gain(fresh_delay(0.4F)), 0.5F);
  EXPECT_FLOAT_EQ(distance_delay_gain(distance_delay{}), 1.0F);
}

TEST(DistanceDelay, ComesInOtherSizesAndPassesSamplesUnchangedWithoutStorage) {
  distance_delay other;
  distance_delay_create(48000.0F, 5, &other);
  EXPECT_EQ(other.length, 700);
  distance_delay_set(1.0F, true, &other);
  EXPECT_NEAR(other.delay, 699.7, 0.01);

  const waveform in = noise(100, 1.0F);
  const std::vector<double> positions(in.size(), 0.5);
  waveform delays(in.size(), 1.0F), other_delays(in.size());
  distance_delay ready = fresh_delay(0.2F);
  const auto expect_passed = [&](distance_delay* delay) {
    waveform samples = in;
    distance_delay_set(0.2F, true, delay);
    distance_delay_process(samples.data(), samples.data(), 100, delay);
    const float before = delay->delay;
    distance_delay_glide(positions.data(), positions.data(), 100, delays.data(), other_delays.data(), delay, &ready);
    distance_delay_run(delays.data(), 100, samples.data(), delay);
    EXPECT_EQ(delay->delay, before);
    EXPECT_EQ(delay->ready, 0);
    EXPECT_EQ(samples, in);
  };
  for (const float rate : {0.0F, -44100.0F, infinite, nan_value, 1e9F}) {
    distance_delay absurd;
    distance_delay_create(rate, 10, &absurd);
    expect_passed(&absurd);
  }
  distance_delay_release(&other);
  expect_passed(&other);
  distance_delay_prepare(&other);
  EXPECT_EQ(other.ready, 1);
  EXPECT_NEAR(other.delay, 139.9, 0.1);
}

struct positions {
  std::vector<double> left;
  std::vector<double> right;
};

// Positions from `counter` on.
positions positions_from(const motion_shape& shape, double counter, size_t count) {
  positions all{std::vector<double>(count), std::vector<double>(count)};
  motion_anchor anchor;
  for (size_t i = 0; i < count;) {
    const auto left = std::min(motion_span, static_cast<int32_t>(count - i));
    i += static_cast<size_t>(motion_positions(shape, left, &all.left[i], &all.right[i], &counter, &anchor));
  }
  return all;
}

TEST(Motion, FollowsItsFormulaThroughWholeTurnsAtAnyTime) {
  const std::tuple<motion_shape, double, double> motions[] = {{chorus_motion, 3.561896432641489e-05, 0.25},
                                                              {reverb_motion, 2.849517146113191e-05, 0.45}};
  for (const auto& [shape, step, reach] : motions) {
    for (const double start : {0.0, 176400.0 * 50, 1e9 - 100001.0}) {
      const size_t count = 230000;
      const positions all = positions_from(shape, start, count);
      double worst = 0.0;
      for (size_t i = 0; i < count; ++i) {
        const double x = std::fmod((start + static_cast<double>(i)) * step, 6.283185307179586);
        const double s = 0.25 * std::cos(x) + 0.25 * std::cos(2.0 * x) + 0.25 * std::cos(x / 2.0);
        const double left = (0.5 - (0.25 * std::sin(3.0 * x) - s) * 0.5) * reach;
        const double right = (0.5 - (0.25 * std::cos(3.0 * x) + s) * 0.5) * reach;
        worst = std::max({worst, std::fabs(all.left[i] - left), std::fabs(all.right[i] - right)});
      }
      EXPECT_LT(worst, 1e-12) << "from " << start;
    }
  }
}

TEST(Chorus, DelaysEachChannelByItsOwnMotion) {
  const waveform in = noise(200000, 0.3F);
  const positions way = positions_from(chorus_motion, 0.0, in.size());
  chorus_state state;
  chorus_prepare(&state);
  waveform left = in;
  waveform right = in;
  std::array<plain_delay, 2> plain{{{state.left.delay}, {state.right.delay}}};
  waveform expected_left;
  waveform expected_right;
  float shortest = 1e6F;
  float longest = 0.0F;
  for (size_t i = 0; i < in.size(); ++i) {
    const auto samples_at = [](double position) { return 44100.0F / 343.0F * std::max(1.0F, float(position) * 10.0F); };
    expected_left.push_back(plain[0].next(in[i], samples_at(way.left[i])));
    expected_right.push_back(plain[1].next(in[i], samples_at(way.right[i])));
    shortest = std::min({shortest, plain[0].delay, plain[1].delay});
    longest = std::max({longest, plain[0].delay, plain[1].delay});
  }
  for (size_t i = 0, n = 1; i < in.size(); i += n, n = std::min(in.size() - i, (n * 7 + 3) % 600)) {
    chorus_process(left.data() + i, right.data() + i, static_cast<int32_t>(n), &state);
  }
  EXPECT_EQ(left, expected_left);
  EXPECT_EQ(right, expected_right);
  EXPECT_GT(largest_difference(left, right), 0.1F);
  EXPECT_NEAR(shortest, 128.57, 0.1);
  EXPECT_GT(longest, 240.0F);
  EXPECT_LT(longest, 322.0F);
}

TEST(Chorus, KeepsItsPositionWhileOff) {
  const auto state = std::make_unique<voco_state>();
  waveform voice = noise(512, 0.3F), carrier = noise(512, 0.3F, 2), left(512), right(512);
  const auto run_block = [&](float chorus) {
    voco_params params = voco_params_from(external_carrier_sound(2.0F), chorus, 44100.0F);
    voco_commit(&params, state.get());
    voco_process(voice.data(), carrier.data(), left.data(), right.data(), 512, state.get());
    return state->chorus.sample_counter;
  };
  EXPECT_EQ(run_block(0.9F), 0.0);
  EXPECT_EQ(run_block(1.0F), 512.0);
  const float delay = state->chorus.left.delay;
  EXPECT_EQ(run_block(0.0F), 512.0);
  EXPECT_EQ(state->chorus.left.delay, delay);
}

}  // namespace
