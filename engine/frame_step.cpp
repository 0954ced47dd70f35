// MIT License.
#include "engine/frame_step.h"

#include <algorithm>
#include <cmath>

#include "dsp/lanes.h"
#include "dsp/noise.h"
#include "dsp/oscillators.h"
#include "engine/modes.h"
#include "engine/transform_modes.h"
#include "engine/voco_state.h"

namespace {

// Moves the overlap-add outputs on by one hop: the half that was built is played next.
void advance_outputs(voco_state* state) {
  for (voco_state::frame* const output : {&state->ola_left, &state->ola_right}) {
    std::copy(output->begin() + frame_hop, output->end(), output->begin());
    std::fill(output->begin() + frame_hop, output->end(), 0.0F);
  }
}

// Scales a frame hotter than full scale down to full scale, and windows it.
void normalise(const voco_state::frame& frame, const voco_state::frame& window, voco_state::frame* result) {
  float4 peaks = splat(1.0F);
  for (size_t i = 0; i < frame_size; i += 4) {
    const float4 level = magnitude(load4(&frame[i]));
    peaks = level > peaks ? level : peaks;
  }
  const float scale = 1.0F / std::max(std::max(peaks[0], peaks[1]), std::max(peaks[2], peaks[3]));
  for (size_t i = 0; i < frame.size(); ++i) (*result)[i] = scale * frame[i] * window[i];
}

struct frame_measure {
  float level_sum = 0.0F;
  int32_t crossings = 0;
};

// Sums the modulator's magnitude and counts its changes of sign, where zero has a sign of its own. The first sample
// always counts. On the way both signals are windowed as the two parts of one complex frame, so that one transform
// serves both: the sum, whose additions wait for each other, takes as long without that.
frame_measure measure_and_window(voco_state* state) {
  frame_measure result;
  int4 last_positive = {-1, -1, -1, -1};  // together a sign that no sample has
  int4 last_negative = {-1, -1, -1, -1};
  int4 crossings{};
  for (size_t i = 0; i < frame_size; i += 4) {
    const float4 modulator = load4(&state->modulator_frame[i]);
    const float4 level = magnitude(modulator);
    for (int lane = 0; lane < 4; ++lane) result.level_sum += level[lane];

    const int4 positive = modulator > 0.0F;
    const int4 negative = modulator < 0.0F;
    crossings += ((positive ^ __builtin_shufflevector(last_positive, positive, 3, 4, 5, 6)) |
                  (negative ^ __builtin_shufflevector(last_negative, negative, 3, 4, 5, 6)));
    last_positive = positive;
    last_negative = negative;

    const float4 window = load4(&state->hann_window[i]);
    const float4 re = modulator * window;
    const float4 im = load4(&state->carrier_frame[i]) * window;
    store4(__builtin_shufflevector(re, im, 0, 4, 1, 5), &state->complex_frame[2 * i]);
    store4(__builtin_shufflevector(re, im, 2, 6, 3, 7), &state->complex_frame[2 * i + 4]);
  }
  result.crossings = -(crossings[0] + crossings[1] + crossings[2] + crossings[3]);
  return result;
}

void shift_frames(voco_state* state) {
  for (voco_state::frame* const frame : {&state->modulator_frame, &state->carrier_frame}) {
    std::copy(frame->begin() + frame_hop, frame->end(), frame->begin());
  }
}

void overlap_add_mono(const voco_state::frame& window, float gain, voco_state* state) {
  for (size_t i = 0; i < frame_size; ++i) {
    const float y = state->time_modulator[i] * window[i] * gain;
    state->ola_left[i] += y;
    state->ola_right[i] += y;
  }
}

}  // namespace

void voco_frame_step(voco_state* state) {
  state->noise_draw_a = noise_rand() * 3.051851e-05;
  state->noise_draw_b = noise_rand() * 3.051851e-05;
  state->frame_pos = frame_hop;
  advance_outputs(state);
  const vocoder_algorithm& algorithm = vocoder_algorithm_of(state->mode);
  if (algorithm.domain == vocoder_domain::samples) {
    normalise(state->modulator_frame, state->welch_window, &state->time_modulator);
    normalise(state->carrier_frame, state->welch_window, &state->time_carrier);
  }
  const frame_measure modulator = measure_and_window(state);
  shift_frames(state);
  wsyn_modulate_pitch(modulator.level_sum * 0.0078125F, modulator.crossings, &state->synth);

  const voco_state::frame& window = state->*algorithm.window;
  if (algorithm.domain == vocoder_domain::bins) {
    transform_analyse(state);
    algorithm.vocode(state);
    transform_synthesise(window, algorithm.gain, state);
  } else {
    algorithm.vocode(state);
    overlap_add_mono(window, algorithm.gain, state);
  }
}
