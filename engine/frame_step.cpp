// MIT License.
#include "engine/frame_step.h"

#include <algorithm>
#include <cmath>

#include "dsp/convert.h"
#include "dsp/noise.h"
#include "dsp/oscillators.h"
#include "engine/prediction_modes.h"
#include "engine/transform_modes.h"
#include "engine/voco_state.h"
#include "engine/wavelet_modes.h"

namespace {

// The algorithms that work on the normalised frame in the time domain, with the window and the gain under which their
// result joins the overlap-add outputs.
struct time_domain_mode {
  int32_t mode;
  voco_state::frame voco_state::*window;
  float gain;
};

// clang-format off
constexpr time_domain_mode time_domain_modes[] = {
    {6,  &voco_state::welch_window, 1.0F},  // filter bank, zero phase
    {7,  &voco_state::welch_window, 5.5F},  // filter bank, two forward passes
    {8,  &voco_state::welch_window, 5.5F},  // linear prediction, order 10
    {9,  &voco_state::welch_window, 5.5F},  // linear prediction, order 35
    {10, &voco_state::welch_window, 5.5F},  // linear prediction, order 80
    {12, &voco_state::hann_window,  5.5F},  // wavelet, 4 taps
    {13, &voco_state::hann_window,  5.5F},  // wavelet pair, split by level
    {14, &voco_state::welch_window, 5.5F},  // wavelet pair, 76 taps only
};
// clang-format on

const time_domain_mode* time_domain_mode_of(int32_t mode) {
  const auto* const found = std::find_if(std::begin(time_domain_modes), std::end(time_domain_modes),
                                         [mode](const time_domain_mode& entry) { return entry.mode == mode; });
  return found == std::end(time_domain_modes) ? nullptr : found;
}

// The overlap-add outputs move on by one hop: what was built is played next.
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

// Sums the modulator's magnitude and counts its changes of sign. The first sample always counts; so does each step to
// or from an exact zero, whose sign is neither 1 nor -1 but what a conversion makes of an invalid number.
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

// Leaves the result in `time_modulator`.
void vocode_in_time_domain(voco_state* state) {
  float* const modulator = state->time_modulator.data();
  const float* const carrier = state->time_carrier.data();
  switch (state->mode) {
    case 6:
      vocoder_filter_bank(band_filter::bandpass_forward_backward, modulator, carrier, frame_size, state);
      break;
    case 7:
      vocoder_filter_bank(band_filter::bandpass_twice, modulator, carrier, frame_size, state);
      break;
    case 8:
      vocoder_prediction(prediction_order_low, modulator, carrier, frame_size, &state->prediction, &state->arena);
      break;
    case 9:
      vocoder_prediction(prediction_order_medium, modulator, carrier, frame_size, &state->prediction, &state->arena);
      break;
    case 10:
      vocoder_prediction(prediction_order_high, modulator, carrier, frame_size, &state->prediction, &state->arena);
      break;
    case 12:
      vocoder_wavelet(modulator, carrier, frame_size, state);
      break;
    case 13:
      vocoder_wavelet_pair(wavelet_pair::split_by_level, modulator, carrier, frame_size, state);
      break;
    case 14:
      vocoder_wavelet_pair(wavelet_pair::long_only, modulator, carrier, frame_size, state);
      break;
    default:
      break;
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

  if (const time_domain_mode* const entry = time_domain_mode_of(state->mode); entry != nullptr) {
    vocode_in_time_domain(state);
    overlap_add_mono(state->*entry->window, entry->gain, state);
  } else {
    transform_vocode(state);
  }
}
