// MIT License.
#include "engine/reverb.h"

#include <algorithm>
#include <cmath>

#include "dsp/convert.h"
#include "dsp/lanes.h"
#include "engine/bad_samples.h"

namespace {

// clang-format off
// Tap positions in a ring of 13400 samples, spread unevenly so that no two echoes keep step.
constexpr std::array<int32_t, reverb_tap_count> tap_base = {
     120,  1635,  2564,  4210,  //  0
    5946,  6879,  8795,  9666,  //  4
    5144,  5644, 10203, 12020,  //  8
    5311,  5541, 10903, 11988,  // 12
      64,   255,  3500,  4899,  // 16
    7122,  8465,  4977, 12419,  // 20
    5788,  9828,  1035,  3035,  // 24
    7511,  8232,  9254,  6428,  // 28
};
constexpr float tap_scale = 7.462686e-05F;  // 1 / 13400

// The taps of a channel's own ring that its output sums, in this order.
struct weighted_tap { size_t tap; float weight; };
constexpr std::array<weighted_tap, 12> left_taps = {{
    { 1,  0.025F }, { 3,  0.1F  }, { 5,  0.2F   }, { 7,  0.3F },
    { 8,  0.325F }, { 9, -0.35F }, {10,  0.375F }, {11,  0.4F },
    {12,  0.15F  }, {13,  0.2F  }, {14,  0.25F  }, {15,  0.3F },
}};
constexpr std::array<weighted_tap, 12> right_taps = {{
    { 0,  0.0125F}, { 2,  0.05F }, { 4,  0.15F  }, { 6,  0.25F},
    { 8, -0.325F }, { 9,  0.35F }, {10, -0.375F }, {11,  0.4F },
    {12,  0.15F  }, {13,  0.2F  }, {14,  0.25F  }, {15,  0.3F },
}};
constexpr float equal_weight = 0.1F;  // of the taps from 16 on, which both channels have
// clang-format on

constexpr float longest_decay_size = 0.91F;  // beyond it the tail would hardly decay
constexpr float output_level = 0.75F;

// Consecutive samples run side by side, one per lane. Each lane computes what a single sample does, provided that no
// lane reads what another of the group has yet to write. The positions of one sample are all different, so the order in
// which a sample visits them is free, and this is how it is chosen: in the smallest rings some positions are less than
// a group apart (0, 16 and the input; 11 and 15; 9 and 13; 22 and 19), and there the one ahead is done with its slot,
// having been read and rotated, before the one behind is read.
constexpr int32_t group_size = sizeof(float4) / sizeof(float);

struct reverb_gains {
  float output;
  float feedback;
  float turn;  // of the rotations
};

// Sums and motion of the samples that the motion computes in one call.
struct run {
  std::array<float, motion_span> left_sum;
  std::array<float, motion_span> right_sum;
  std::array<float, motion_span> left_delays;
  std::array<float, motion_span> right_delays;
};

float clamp_to_unit(float value) {
  if (value > 1.0F) return 1.0F;
  return value > 0.0F ? value : 0.0F;
}

float number_or_zero(float sample) {
  return std::isnan(sample) ? 0.0F : sample;
}

bool all_finite(const float* samples, int32_t n) {
  float4 differences{};  // of each sample and itself: 0, or NaN if it isn't finite
  int32_t i = 0;
  for (; i + group_size <= n; i += group_size) differences += load4(samples + i) - load4(samples + i);
  float difference = differences[0] + differences[1] + differences[2] + differences[3];
  for (; i < n; ++i) difference += samples[i] - samples[i];
  return difference == 0.0F;
}

int32_t size_step(float size) {
  return truncate_to_int32(size * 128.0F);
}

void build_taps(reverb_state* state) {
  state->limit = truncate_to_int32(state->size * 22000.0F + 422.0F - 1.0F);
  state->write_index = 1;
  const float unit = static_cast<float>(state->limit) * tap_scale;
  for (size_t i = 0; i < state->tap.size(); ++i) {
    state->tap[i] = truncate_to_int32(unit * static_cast<float>(tap_base[i]));
  }
}

void clear_rings(reverb_state* state) {
  state->left.fill(0.0F);
  state->right.fill(0.0F);
  state->overflowed = 0;
}

reverb_gains gains_of(const reverb_state& state) {
  const float size = std::min(state.decay_size, longest_decay_size);
  const float feedback = size * 0.9F;
  return {.output = output_level * (state.level < 0.5F ? state.level * 2.0F : 1.0F),
          .feedback = feedback,
          .turn = ((1.0F - size) * 0.2F + feedback * 0.45F) * 1.125F};
}

template <typename lanes>
lanes load(const float* from) {
  lanes value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

template <typename lanes>
void store(lanes value, float* to) {
  std::memcpy(to, &value, sizeof value);
}

// Takes a part of `from` off `to`, then adds a part of the new `to` to `from`: a small turn of the plane of the two.
template <typename lanes>
void rotate(float turn, float* to, float* from) {
  const lanes source = load<lanes>(from);  // in the other ring than `to`
  const lanes turned = load<lanes>(to) - turn * source;
  store(turned, to);
  store(source + turn * turned, from);
}

// One sample, or a group of them.
template <typename lanes>
struct visit {
  float turn;
  const tap_positions& at;
  float* left;
  float* right;
  lanes left_weighted{};
  lanes right_weighted{};
  lanes left_equal{};
  lanes right_equal{};

  // Each sum adds up in the order of its taps.
  void add_weighted(size_t first, size_t end) {
    for (size_t i = first; i < end; ++i) {
      left_weighted += left_taps[i].weight * load<lanes>(left + at[left_taps[i].tap]);
      right_weighted += right_taps[i].weight * load<lanes>(right + at[right_taps[i].tap]);
    }
  }
  void add_equal(size_t first, size_t end) {
    for (size_t i = first; i < end; ++i) {
      left_equal += load<lanes>(left + at[i]);
      right_equal += load<lanes>(right + at[i]);
    }
  }

  void rotate_left(size_t to, size_t from) { rotate<lanes>(turn, left + at[to], right + at[from]); }
  void rotate_right(size_t to, size_t from) { rotate<lanes>(turn, right + at[to], left + at[from]); }
};

template <typename lanes>
void sum_and_rotate(float gain, visit<lanes> v, float* left_sum, float* right_sum) {
  v.add_weighted(0, 8);  // the taps up to 11
  v.rotate_left(3, 0);
  v.rotate_right(2, 1);
  v.rotate_left(7, 4);
  v.rotate_right(6, 5);
  v.rotate_left(11, 8);
  v.rotate_right(10, 9);
  v.add_weighted(8, 12);
  v.rotate_left(15, 12);
  v.rotate_right(14, 13);

  const lanes left22 = load<lanes>(v.left + v.at[22]);
  const lanes left23 = load<lanes>(v.left + v.at[23]);
  const lanes right22 = load<lanes>(v.right + v.at[22]);
  const lanes right23 = load<lanes>(v.right + v.at[23]);
  v.rotate_right(23, 22);
  v.add_equal(16, 22);
  v.left_equal = v.left_equal + left22 + left23;
  v.right_equal = v.right_equal + right22 + right23;
  v.add_equal(24, 32);
  v.rotate_left(19, 16);
  v.rotate_right(18, 17);
  v.rotate_left(21, 20);
  v.rotate_left(25, 24);
  v.rotate_right(27, 26);
  v.rotate_right(29, 28);
  v.rotate_right(31, 30);

  store(gain * (v.left_weighted + equal_weight * v.left_equal), left_sum);
  store(gain * (v.right_weighted + equal_weight * v.right_equal), right_sum);
}

// Puts the next input values into a ring, by way of its motion delay.
template <int32_t n>
void feed(float feedback, const float* in, const float* delays, float* slots, distance_delay* motion) {
  std::array<float, n> samples;
  for (int32_t i = 0; i < n; ++i) {
    samples[static_cast<size_t>(i)] = -(feedback * slots[i] + number_or_zero(in[i]));
  }
  distance_delay_run(delays, n, samples.data(), motion);
  for (int32_t i = 0; i < n; ++i) slots[i] = finite_or_zero(samples[static_cast<size_t>(i)]);
}

// Runs one sample, or a group of `n`: those from `first` on of a run, whose positions are `offset` further on.
template <typename lanes, int32_t n>
void advance(const reverb_gains& gains, int32_t first, int32_t offset, const float* in_left, const float* in_right,
             run* samples, reverb_state* state) {
  float* const left = state->left.data() + offset;
  float* const right = state->right.data() + offset;
  sum_and_rotate(gains.output, visit<lanes>{gains.turn, state->tap, left, right}, samples->left_sum.data() + first,
                 samples->right_sum.data() + first);
  feed<n>(gains.feedback, in_left + first, samples->left_delays.data() + first, left + state->write_index,
          &state->motion_left);
  feed<n>(gains.feedback, in_right + first, samples->right_delays.data() + first, right + state->write_index,
          &state->motion_right);
}

void move_positions(int32_t n, reverb_state* state) {
  const auto moved = [&](int32_t position) { return position + n > state->limit ? 0 : position + n; };
  state->write_index = moved(state->write_index);
  for (int32_t& tap : state->tap) tap = moved(tap);
}

// Samples up to the next wrap of a position.
int32_t samples_to_wrap(const reverb_state& state) {
  const int32_t furthest = std::max(state.write_index, *std::max_element(state.tap.begin(), state.tap.end()));
  return state.limit + 1 - furthest;
}

// Moves both sources, and writes their delays, for `n` samples or as many as the motion computes in one call.
//   returns  how many
int32_t move_sources(int32_t n, run* samples, reverb_state* state) {
  std::array<double, motion_span> left_positions;
  std::array<double, motion_span> right_positions;
  const int32_t count = motion_positions(reverb_motion, n, left_positions.data(), right_positions.data(),
                                         &state->motion_counter, &state->anchor);
  distance_delay_glide(left_positions.data(), right_positions.data(), count, samples->left_delays.data(),
                       samples->right_delays.data(), &state->motion_left, &state->motion_right);
  return count;
}

//   returns  how many of the `n` samples it processed
int32_t process_run(const reverb_gains& gains, const float* in_left, const float* in_right, float* out_left,
                    float* out_right, int32_t n, reverb_state* state) {
  run samples;
  const int32_t count = move_sources(n, &samples, state);
  for (int32_t start = 0; start < count;) {
    const int32_t end = std::min(count, start + samples_to_wrap(*state));
    int32_t i = start;
    for (; i + group_size <= end; i += group_size) {
      advance<float4, group_size>(gains, i, i - start, in_left, in_right, &samples, state);
    }
    for (; i < end; ++i) advance<float, 1>(gains, i, i - start, in_left, in_right, &samples, state);
    move_positions(end - start, state);
    start = end;
  }
  if (!all_finite(samples.left_sum.data(), count) || !all_finite(samples.right_sum.data(), count)) {
    state->overflowed = 1;
  }
  for (int32_t i = 0; i < count; ++i) {
    out_left[i] = finite_or_zero(out_left[i] + samples.left_sum[static_cast<size_t>(i)]);
    out_right[i] = finite_or_zero(out_right[i] + samples.right_sum[static_cast<size_t>(i)]);
  }
  return count;
}

}  // namespace

void reverb_prepare(reverb_state* state) {
  for (distance_delay* const delay : {&state->motion_left, &state->motion_right}) {
    if (delay->ready == 0) distance_delay_create(delay);
  }
}

void reverb_configure(float level, float size, reverb_state* state) {
  size = clamp_to_unit(size);
  state->level = clamp_to_unit(level);
  const bool motion_exists = state->motion_left.ready != 0 && state->motion_right.ready != 0;
  if (state->configured != 0 && motion_exists && size_step(size) == size_step(state->size)) return;
  state->size = size;
  state->decay_size = size;
  build_taps(state);
  clear_rings(state);
  state->motion_counter = 0.0;
  reverb_prepare(state);
  state->configured = 1;
}

void reverb_recover(reverb_state* state) {
  if (state->overflowed == 0) return;
  clear_rings(state);
  distance_delay_clear(&state->motion_left);
  distance_delay_clear(&state->motion_right);
}

void reverb_process(float in_left, float in_right, float* out_left, float* out_right, reverb_state* state) {
  reverb_process_block(&in_left, &in_right, out_left, out_right, 1, state);
}

void reverb_process_block(const float* in_left, const float* in_right, float* out_left, float* out_right, int32_t n,
                          reverb_state* state) {
  if (state->configured == 0) return;
  const reverb_gains gains = gains_of(*state);
  for (int32_t i = 0; i < n;) {
    i += process_run(gains, in_left + i, in_right + i, out_left + i, out_right + i, n - i, state);
  }
}
