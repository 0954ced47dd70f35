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
  std::array<float, motion_span> left_delays;
  std::array<float, motion_span> right_delays;
  for (int32_t i = 0; i < n;) {
    const int32_t count = motion_positions(chorus_motion, n - i, left_positions.data(), right_positions.data(),
                                           &state->sample_counter, &state->anchor);
    distance_delay_glide(left_positions.data(), right_positions.data(), count, left_delays.data(), right_delays.data(),
                         &state->left, &state->right);
    distance_delay_run(left_delays.data(), count, left + i, &state->left);
    distance_delay_run(right_delays.data(), count, right + i, &state->right);
    i += count;
  }
}
