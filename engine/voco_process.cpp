// MIT License.
#include "engine/voco_process.h"

#include <cmath>

#include "dsp/oscillators.h"
#include "engine/frame_step.h"
#include "engine/notes.h"
#include "engine/voco_state.h"

namespace {

constexpr int32_t ring_mask = frame_size - 1;
constexpr float carrier_level = 0.5F;  // of the synthesizer's sum in the carrier frame

float finite_or_zero(float sample) {
  return std::isfinite(sample) ? sample : 0.0F;
}

void remove_bad_samples(float* samples, int32_t n) {
  for (int32_t i = 0; i < n; ++i) samples[i] = finite_or_zero(samples[i]);
}

// Stores `sample` in a ring of one frame and gives the one it replaces: the sample of 1024 samples ago.
float delay_one_frame(float sample, voco_state::frame* ring, int32_t* index) {
  float& slot = (*ring)[static_cast<size_t>(*index)];
  const float delayed = slot;
  slot = sample;
  *index = (*index + 1) & ring_mask;
  return delayed;
}

}  // namespace

void voco_process(float* first, float* second, float* left, float* right, int32_t n, voco_state* state) {
  if (state->committed == 0 || state->synth.initialised == 0) return;
  remove_bad_samples(first, n);
  remove_bad_samples(second, n);
  state->in_block = 1;
  state->in_frame_loop = 1;
  wsyn_select_render(&state->synth);

  const float wet = state->wet_gain;
  const float dry_carrier = state->dry_carrier_gain;
  const float dry_modulator = state->dry_modulator_gain;
  const bool second_is_carrier = state->internal_carrier <= 0.5F;
  for (int32_t i = 0; i < n; ++i) {
    const auto p = static_cast<size_t>(state->frame_pos);
    const float carrier = second_is_carrier ? second[i] : carrier_level * wsyn_next_sample(&state->synth);
    state->modulator_frame[p] = finite_or_zero(first[i]);
    state->carrier_frame[p] = finite_or_zero(carrier);
    const float delayed_modulator =
        delay_one_frame(state->modulator_frame[p], &state->dry_modulator_ring, &state->dry_modulator_index);
    const float delayed_carrier =
        delay_one_frame(state->carrier_frame[p], &state->dry_carrier_ring, &state->dry_carrier_index);

    const float wet_left = state->ola_left[p - frame_hop];
    const float wet_right = state->ola_right[p - frame_hop];
    left[i] = wet_left * wet + delayed_modulator * dry_modulator + delayed_carrier * dry_carrier;
    right[i] = wet_right * wet + delayed_modulator * dry_modulator + delayed_carrier * dry_carrier;

    if (++state->frame_pos == frame_size) voco_frame_step(state);
  }

  remove_bad_samples(left, n);
  remove_bad_samples(right, n);
  state->in_block = 0;
  state->in_frame_loop = 0;
}
