// MIT License. The vocoder algorithms: their numbers, and how the result of each reaches the output.
#pragma once

#include <array>
#include <cstdint>

#include "engine/voco_state.h"

// Numbers of the algorithms, as a sound's `value_mode` gives them.
enum vocoder_mode : int32_t {
  mode_geometric_mean = 0,
  mode_two_bin_bands = 1,
  mode_carrier_phase = 2,
  mode_smooth_512 = 3,
  mode_smooth_128 = 4,
  mode_smooth_32 = 5,
  mode_filter_bank_zero_phase = 6,
  mode_filter_bank_twice = 7,
  mode_prediction_10 = 8,
  mode_prediction_35 = 9,
  mode_prediction_80 = 10,
  mode_modulator_phase = 11,
  mode_wavelet_4 = 12,
  mode_wavelet_split = 13,
  mode_wavelet_76 = 14,
};

constexpr int32_t vocoder_mode_count = 15;

// Domain in which an algorithm works.
enum class vocoder_domain {
  bins,     // the spectra in `complex_frame` and `carrier_spectrum`; the result replaces `carrier_spectrum`
  samples,  // the frames `time_modulator` and `time_carrier`; the result replaces `time_modulator`
};

// An algorithm, with the window and the gain under which its result joins the overlap-add outputs.
struct vocoder_algorithm {
  int32_t mode;
  const char* name;
  vocoder_domain domain;
  voco_state::frame voco_state::*window;
  float gain;
  void (*vocode)(voco_state* state);
};

// The algorithms, in the order of their numbers.
extern const std::array<vocoder_algorithm, vocoder_mode_count> vocoder_algorithms;

// The algorithm of `mode`. For a number without one: the carrier's spectrum, unchanged.
const vocoder_algorithm& vocoder_algorithm_of(int32_t mode);
