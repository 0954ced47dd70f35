// MIT License.
#include "engine/reverb.h"

#include <gtest/gtest.h>

#include <limits>

#include "tests/engine/engine_words.h"

namespace {

constexpr float nan_value = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

using reverb_ptr = std::unique_ptr<reverb_state>;

reverb_ptr fresh_reverb(float level, float size) {
  auto state = std::make_unique<reverb_state>();
  reverb_configure(level, size, state.get());
  return state;
}

// What the reverb adds to silence, in blocks of changing lengths.
stereo tail_of(const waveform& left, const waveform& right, reverb_state* state) {
  stereo out{silence(left.size()), silence(left.size())};
  for (size_t i = 0, n = 1; i < left.size(); i += n, n = std::min(left.size() - i, (n * 13 + 7) % 600)) {
    reverb_process_block(left.data() + i, right.data() + i, out.left.data() + i, out.right.data() + i,
                         static_cast<int32_t>(n), state);
  }
  return out;
}

// The judge: one sample after the other, tap by tap.
void step_plainly(float in_left, float in_right, float* out_left, float* out_right, reverb_state* s) {
  const auto l = [s](size_t tap) -> float& { return s->left[static_cast<size_t>(s->tap[tap])]; };
  const auto r = [s](size_t tap) -> float& { return s->right[static_cast<size_t>(s->tap[tap])]; };
  const auto finite = [](float x) { return std::isfinite(x) ? x : 0.0F; };
  if (std::isnan(in_left)) in_left = 0.0F;
  if (std::isnan(in_right)) in_right = 0.0F;
  const float o = s->level < 0.5F ? std::max(s->level, 0.0F) * 2.0F : 1.0F;
  const float size = std::min(s->decay_size, 0.91F);
  const float f = size * 0.9F;
  const float g = ((1.0F - size) * 0.2F + f * 0.45F) * 1.125F;

  float sum_left = 0.0F;
  float sum_right = 0.0F;
  for (size_t i = 16; i < 32; ++i) {
    sum_left += l(i);
    sum_right += r(i);
  }
  *out_left +=
      0.75F * o *
      (0.025F * l(1) + 0.1F * l(3) + 0.2F * l(5) + 0.3F * l(7) + 0.325F * l(8) - 0.35F * l(9) + 0.375F * l(10) +
       0.4F * l(11) + 0.15F * l(12) + 0.2F * l(13) + 0.25F * l(14) + 0.3F * l(15) + 0.1F * sum_left);
  *out_right +=
      0.75F * o *
      (0.0125F * r(0) + 0.05F * r(2) + 0.15F * r(4) + 0.25F * r(6) - 0.325F * r(8) + 0.35F * r(9) - 0.375F * r(10) +
       0.4F * r(11) + 0.15F * r(12) + 0.2F * r(13) + 0.25F * r(14) + 0.3F * r(15) + 0.1F * sum_right);

  float& slot_left = s->left[static_cast<size_t>(s->write_index)];
  float& slot_right = s->right[static_cast<size_t>(s->write_index)];
  float vl = -(f * slot_left + in_left);
  float vr = -(f * slot_right + in_right);
  double position_left = 0.0;
  double position_right = 0.0;
  motion_positions(reverb_motion, 1, &position_left, &position_right, &s->motion_counter, &s->anchor);
  distance_delay_set(static_cast<float>(position_left), false, &s->motion_left);
  distance_delay_process(&vl, &vl, 1, &s->motion_left);
  distance_delay_set(static_cast<float>(position_right), false, &s->motion_right);
  distance_delay_process(&vr, &vr, 1, &s->motion_right);
  slot_left = finite(vl);
  slot_right = finite(vr);
  *out_left = finite(*out_left);
  *out_right = finite(*out_right);

  const auto rotate = [g](float& first, float& second) {
    first -= g * second;
    second += g * first;
  };
  rotate(l(3), r(0));
  rotate(r(2), l(1));
  rotate(l(7), r(4));
  rotate(r(6), l(5));
  rotate(l(11), r(8));
  rotate(r(10), l(9));
  rotate(l(15), r(12));
  rotate(r(14), l(13));
  rotate(l(19), r(16));
  rotate(r(18), l(17));
  rotate(l(21), r(20));
  rotate(r(23), l(22));
  rotate(l(25), r(24));
  rotate(r(27), l(26));
  rotate(r(29), l(28));
  rotate(r(31), l(30));
  s->write_index = s->write_index == s->limit ? 0 : s->write_index + 1;
  for (int32_t& tap : s->tap) tap = tap == s->limit ? 0 : tap + 1;
}

TEST(Reverb, EqualsTheLoopOverItsTapsBitForBitAtAnySize) {
  // Below 0.05 some positions are less than a group of samples apart. From a level of 0.5 on the reverb is at its
  // loudest; below 0 and for NaN it is silent.
  std::vector<std::pair<float, float>> levels_and_sizes = {{0.49F, 0.05F}, {0.6F, 0.06F}, {nan_value, 0.3F},
                                                           {0.0F, 0.5F},   {0.3F, 0.91F}, {1.0F, 1.0F}};
  for (int i = 0; i < 24; ++i) levels_and_sizes.emplace_back(0.3F, static_cast<float>(i) / 512.0F);
  for (const auto& [level, size] : levels_and_sizes) {
    const reverb_ptr fast = fresh_reverb(level, size);
    const reverb_ptr plain = fresh_reverb(level, size);
    waveform left = noise(60000, 1.0F, 1);
    waveform right = noise(60000, 1.0F, 2);
    left[20000] = nan_value;
    right[30000] = infinite;
    left[40000] = 3e38F;
    left[40001] = 3e38F;
    const stereo out = tail_of(left, right, fast.get());
    stereo expected{silence(left.size()), silence(left.size())};
    for (size_t i = 0; i < left.size(); ++i) {
      step_plainly(left[i], right[i], &expected.left[i], &expected.right[i], plain.get());
    }
    ASSERT_EQ(out.left, expected.left) << size;
    ASSERT_EQ(out.right, expected.right) << size;
    EXPECT_EQ(fast->tap, plain->tap);
    EXPECT_EQ(fast->left, plain->left);
    EXPECT_TRUE(all_finite(out.left));

    reverb_process(0.5F, -0.5F, &expected.left[0], &expected.right[0], fast.get());
    step_plainly(0.5F, -0.5F, &expected.left[1], &expected.right[1], plain.get());
    EXPECT_EQ(fast->right, plain->right);
  }
}

TEST(Reverb, IsLikeNewAfterRecoveringFromAnOverflow) {
  const reverb_ptr spoilt = fresh_reverb(0.5F, 0.3F);
  const reverb_ptr clean = fresh_reverb(0.5F, 0.3F);
  const waveform voice = noise(20000, 0.5F);
  tail_of(waveform(20000, 3e38F), waveform(20000, -3e38F), spoilt.get());
  EXPECT_EQ(peak(tail_of(voice, voice, spoilt.get()).left), 0.0F);
  EXPECT_EQ(spoilt->overflowed, 1);
  tail_of(silence(40000), silence(40000), clean.get());
  reverb_recover(spoilt.get());
  const stereo expected = tail_of(voice, voice, clean.get());
  EXPECT_EQ(tail_of(voice, voice, spoilt.get()).left, expected.left);
  EXPECT_GT(peak(expected.left), 0.01F);

  const reverb_state::ring before = clean->left;
  reverb_recover(clean.get());
  EXPECT_EQ(clean->left, before);  // without an overflow the tail stays
}

TEST(Reverb, KeepsItsTapsInsideItsRing) {
  EXPECT_EQ(fresh_reverb(1.0F, 0.0F)->limit, 421);
  EXPECT_EQ(fresh_reverb(1.0F, 1.0F)->limit, 22421);
  const tap_positions expected = {200,   2735,  4290, 7044,  9948,  11510, 14715, 16173, 8606,  9443,  17071,
                                  20111, 8886,  9271, 18242, 20058, 107,   426,   5856,  8197,  11916, 14163,
                                  8327,  20779, 9684, 16444, 1731,  5078,  12567, 13773, 15483, 10755};
  EXPECT_EQ(fresh_reverb(1.0F, 1.0F)->tap, expected);
  for (const float size : {-1.0F, -infinite, nan_value, 0.5F, 2.0F, infinite}) {
    const reverb_ptr state = fresh_reverb(1.0F, size);
    EXPECT_GE(*std::min_element(state->tap.begin(), state->tap.end()), 0) << size;
    EXPECT_LE(*std::max_element(state->tap.begin(), state->tap.end()), state->limit) << size;
  }
  EXPECT_EQ(fresh_reverb(1.0F, nan_value)->limit, 421);
  EXPECT_EQ(fresh_reverb(1.0F, infinite)->limit, 22421);
}

TEST(Reverb, ClearsItsTailOnlyWhenTheSizeChanges) {
  const reverb_ptr state = fresh_reverb(0.5F, 0.5F);
  const waveform in = noise(20000, 0.5F);
  tail_of(in, in, state.get());
  const reverb_state::ring before = state->left;
  reverb_configure(0.2F, 0.503F, state.get());
  EXPECT_EQ(state->left, before);
  EXPECT_EQ(state->size, 0.5F);
  EXPECT_EQ(state->level, 0.2F);
  EXPECT_EQ(state->motion_counter, 20000.0);
  reverb_configure(0.0F, 0.51F, state.get());
  EXPECT_EQ(state->left, reverb_state::ring{});
  EXPECT_EQ(state->right, reverb_state::ring{});
  EXPECT_EQ(state->limit, 11641);
  EXPECT_EQ(state->write_index, 1);
  EXPECT_EQ(state->motion_counter, 0.0);

  state->left.fill(1.0F);
  state->right.fill(1.0F);
  distance_delay_release(&state->motion_right);
  reverb_configure(0.0F, 1.0F, state.get());
  for (const auto& ring : {state->left, state->right}) EXPECT_EQ(std::count(&ring[0], &ring[22422], 0.0F), 22422);
  EXPECT_EQ(state->motion_right.ready, 1) << "a missing delay is made again";
}

}  // namespace
