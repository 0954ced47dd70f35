// MIT License.
#include "engine/chorus.h"

#include <array>

void chorus_prepare(chorus_state* state) {
  for (distance_delay* const delay : {&state->left, &state->right}) {
    if (delay->ready == 0) distance_delay_create(delay);
  }
}

void chorus_process(float* left, float* right, int32_t n, chorus_state* state) {
  std::array<double, motion_span> left_positions;
  std::array<double, motion_span> right_positions;
  for (int32_t i = 0; i < n;) {
    const int32_t count = motion_positions(chorus_motion, n - i, left_positions.data(), right_positions.data(),
                                           &state->sample_counter, &state->anchor);
    distance_delay_follow(left_positions.data(), left + i, count, &state->left);
    distance_delay_follow(right_positions.data(), right + i, count, &state->right);
    i += count;
  }
}
