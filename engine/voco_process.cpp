// MIT License.
#include "engine/voco_process.h"

#include <algorithm>
#include <array>

#include "dsp/oscillators.h"
#include "engine/bad_samples.h"
#include "engine/frame_step.h"
#include "engine/voco_state.h"
#include "engine/voices.h"

namespace {

constexpr int32_t ring_mask = frame_size - 1;
constexpr float carrier_level = 0.5F;      // of the synthesizer's sum in the carrier frame
constexpr float quietest_reverb = 0.001F;  // at this level and below the reverb rests, and keeps its tail

void remove_bad_samples(float* samples, int32_t n) {
  for (int32_t i = 0; i < n; ++i) samples[i] = finite_or_zero(samples[i]);
}

// Stores `sample` in a ring of one frame.
//   returns  the sample it replaces, from 1024 samples ago
float delay_one_frame(float sample, voco_state::frame* ring, int32_t* index) {
  float& slot = (*ring)[static_cast<size_t>(*index)];
  const float delayed = slot;
  slot = sample;
  *index = (*index + 1) & ring_mask;
  return delayed;
}

// The wet signal of `n` samples from frame_pos on. Both channels are complete in the overlap-add outputs.
void take_wet(float* left, float* right, int32_t n, voco_state* state) {
  std::copy_n(state->ola_left.begin() + state->frame_pos - frame_hop, n, left);
  std::copy_n(state->ola_right.begin() + state->frame_pos - frame_hop, n, right);
  if (state->chorus_on >= 1) chorus_process(left, right, n, &state->chorus);
}

// Stores `n` samples in frames and rings, and mixes the wet signal in `left` and `right` with the dry ones.
void fill_and_mix(const float* first, const float* second, float* left, float* right, int32_t n, voco_state* state) {
  const float wet = state->wet_gain;
  const float dry_carrier = state->dry_carrier_gain;
  const float dry_modulator = state->dry_modulator_gain;
  std::array<float, frame_hop> internal;
  const bool second_is_carrier = state->internal_carrier <= 0.5F;
  if (!second_is_carrier) wsyn_next_samples(n, &state->synth, internal.data());
  for (int32_t i = 0; i < n; ++i) {
    const auto p = static_cast<size_t>(state->frame_pos + i);
    const float carrier = second_is_carrier ? second[i] : carrier_level * internal[static_cast<size_t>(i)];
    state->modulator_frame[p] = finite_or_zero(first[i]);
    state->carrier_frame[p] = finite_or_zero(carrier);
    const float delayed_modulator =
        delay_one_frame(state->modulator_frame[p], &state->dry_modulator_ring, &state->dry_modulator_index);
    const float delayed_carrier =
        delay_one_frame(state->carrier_frame[p], &state->dry_carrier_ring, &state->dry_carrier_index);
    left[i] = left[i] * wet + delayed_modulator * dry_modulator + delayed_carrier * dry_carrier;
    right[i] = right[i] * wet + delayed_modulator * dry_modulator + delayed_carrier * dry_carrier;
  }
}

// Adds the reverb of `n` samples, at most a hop, to them.
void add_reverb(float* left, float* right, int32_t n, reverb_state* reverb) {
  std::array<float, frame_hop> tail_left;
  std::array<float, frame_hop> tail_right;
  std::fill_n(tail_left.begin(), n, 0.0F);
  std::fill_n(tail_right.begin(), n, 0.0F);
  remove_bad_samples(left, n);
  remove_bad_samples(right, n);
  reverb_process_block(left, right, tail_left.data(), tail_right.data(), n, reverb);
  for (int32_t i = 0; i < n; ++i) {
    left[i] = tail_left[static_cast<size_t>(i)] + left[i];
    right[i] = tail_right[static_cast<size_t>(i)] + right[i];
  }
}

}  // namespace

void voco_process(float* first, float* second, float* left, float* right, int32_t n, voco_state* state) {
  if (state->committed == 0 || state->synth.initialised == 0) return;
  remove_bad_samples(first, n);
  remove_bad_samples(second, n);
  state->in_block = 1;
  state->in_frame_loop = 1;
  wsyn_select_render(&state->synth);

  // Stage by stage from one frame step to the next: within a hop no stage needs what a later one makes.
  for (int32_t i = 0; i < n;) {
    const int32_t count = std::min(n - i, frame_size - state->frame_pos);
    take_wet(left + i, right + i, count, state);
    fill_and_mix(first + i, second + i, left + i, right + i, count, state);
    if (state->reverb_level > quietest_reverb) add_reverb(left + i, right + i, count, &state->reverb);
    state->frame_pos += count;
    if (state->frame_pos == frame_size) {
      voco_frame_step(state);
      reverb_recover(&state->reverb);
    }
    i += count;
  }

  remove_bad_samples(left, n);
  remove_bad_samples(right, n);
  state->in_block = 0;
  state->in_frame_loop = 0;
}
