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

using hop_samples = std::array<float, frame_hop>;

// Stores `n` samples in a ring of one frame.
//   delayed   receives the samples that they replace, from 1024 samples ago
void delay_one_frame(const float* samples, int32_t n, voco_state::frame* ring, int32_t* index, float* delayed) {
  for (int32_t i = 0; i < n;) {
    const int32_t count = std::min(n - i, frame_size - *index);
    float* const slots = ring->data() + *index;
    std::copy_n(slots, count, delayed + i);
    std::copy_n(samples + i, count, slots);
    *index = (*index + count) & ring_mask;
    i += count;
  }
}

// The wet signal of `n` samples from frame_pos on. Both channels are complete in the overlap-add outputs.
void take_wet(float* left, float* right, int32_t n, voco_state* state) {
  std::copy_n(state->ola_left.begin() + state->frame_pos - frame_hop, n, left);
  std::copy_n(state->ola_right.begin() + state->frame_pos - frame_hop, n, right);
  if (state->chorus_on >= 1) chorus_process(left, right, n, &state->chorus);
}

// Stores `n` samples, at most a hop, in frames and rings, and mixes the wet signal in `left` and `right` with the dry
// ones.
void fill_and_mix(const float* first, const float* second, float* left, float* right, int32_t n, voco_state* state) {
  float* const modulator = state->modulator_frame.data() + state->frame_pos;
  float* const carrier = state->carrier_frame.data() + state->frame_pos;
  std::copy_n(first, n, modulator);
  if (state->internal_carrier <= 0.5F) {
    std::copy_n(second, n, carrier);
  } else {
    wsyn_next_samples(n, &state->synth, carrier);
    for (int32_t i = 0; i < n; ++i) carrier[i] *= carrier_level;
  }
  remove_bad_samples(modulator, n);
  remove_bad_samples(carrier, n);

  hop_samples dry_modulator;
  hop_samples dry_carrier;
  delay_one_frame(modulator, n, &state->dry_modulator_ring, &state->dry_modulator_index, dry_modulator.data());
  delay_one_frame(carrier, n, &state->dry_carrier_ring, &state->dry_carrier_index, dry_carrier.data());
  for (float* const output : {left, right}) {
    for (int32_t i = 0; i < n; ++i) {
      const auto t = static_cast<size_t>(i);
      output[i] = output[i] * state->wet_gain + dry_modulator[t] * state->dry_modulator_gain +
                  dry_carrier[t] * state->dry_carrier_gain;
    }
  }
}

// Adds the reverb of `n` samples, at most a hop, to them.
void add_reverb(float* left, float* right, int32_t n, reverb_state* reverb) {
  hop_samples tail_left;
  hop_samples tail_right;
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
