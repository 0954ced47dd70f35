// MIT License.
#include "engine/chorus.h"

#include <array>

#include "engine/voco_state.h"

void chorus_process(float* left, float* right, int32_t n, voco_state* state) {
  std::array<double, motion_span> left_positions;
  std::array<double, motion_span> right_positions;
  for (int32_t i = 0; i < n;) {
    const int32_t count = motion_positions(chorus_motion, n - i, left_positions.data(), right_positions.data(),
                                           &state->sample_counter, &state->chorus_anchor);
    distance_delay_follow(left_positions.data(), left + i, count, &state->chorus_left);
    distance_delay_follow(right_positions.data(), right + i, count, &state->chorus_right);
    i += count;
  }
}
