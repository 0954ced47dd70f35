// MIT License.
#include "engine/frame_step.h"

#include <algorithm>
#include <cmath>

#include "dsp/convert.h"
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
  float peak = 1.0F;
  for (const float sample : frame) peak = std::max(peak, std::fabs(sample));
  const float scale = 1.0F / peak;
  for (size_t i = 0; i < frame.size(); ++i) (*result)[i] = scale * frame[i] * window[i];
}

struct frame_measure {
  float level_sum = 0.0F;
  int32_t crossings = 0;
};

// Sums the modulator's magnitude and counts its changes of sign. The first sample always counts; so does each change
// to or from an exact zero, as its 0 / 0 converts to a third value besides 1 and -1.
frame_measure measure(const voco_state::frame& modulator) {
  frame_measure result;
  int32_t last_sign = 0;
  for (const float x : modulator) {
    const float level = std::fabs(x);
    result.level_sum += level;
    const int32_t sign = truncate_to_int32(x / level);
    if (sign != last_sign) ++result.crossings;
    last_sign = sign;
  }
  return result;
}

// Modulator and carrier as the two parts of one complex frame, so that one transform serves both.
void window_complex_frame(voco_state* state) {
  for (size_t i = 0; i < frame_size; ++i) {
    state->complex_frame[2 * i] = state->modulator_frame[i] * state->hann_window[i];
    state->complex_frame[2 * i + 1] = state->carrier_frame[i] * state->hann_window[i];
  }
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
  normalise(state->modulator_frame, state->welch_window, &state->time_modulator);
  normalise(state->carrier_frame, state->welch_window, &state->time_carrier);
  const frame_measure modulator = measure(state->modulator_frame);
  window_complex_frame(state);
  shift_frames(state);
  wsyn_modulate_pitch(modulator.level_sum * 0.0078125F, modulator.crossings, &state->synth);

  const vocoder_algorithm& algorithm = vocoder_algorithm_of(state->mode);
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
