// MIT License. The signal state of the vocoder, for one core.
#pragma once

#include <array>
#include <cstdint>

#include "dsp/linear_prediction.h"
#include "dsp/wsyn.h"
#include "engine/distance_delay.h"
#include "engine/filter_bank.h"
#include "engine/frame_arena.h"
#include "engine/motion.h"
#include "engine/notes.h"
#include "engine/reverb.h"
#include "engine/smooth_magnitudes.h"
#include "engine/wavelet_modes.h"

constexpr int32_t core_sample_rate_hz = 44100;  // the grid on which all signal work runs
constexpr int32_t frame_size = 1024;            // samples of an analysis frame, and the latency
constexpr int32_t frame_hop = 512;              // samples from one frame to the next
constexpr int32_t bin_count = frame_size / 2;   // spectral bins in use, 43.07 Hz apart

constexpr uint32_t voco_state_tag = 0x766f636f;  // "voco"

// Zeroed when made; the first commit builds what stays fixed afterwards.
struct voco_state {
  using frame = std::array<float, frame_size>;
  using bins = std::array<float, frame_size>;  // `bin_count` are in use, and one more where a mode says so

  uint32_t tag = 0;
  int32_t committed = 0;
  int32_t committing = 0;
  int32_t in_block = 0;       // for inspection
  int32_t in_frame_loop = 0;  // for inspection
  int32_t mode = 0;
  int32_t sibilance_on = 0;
  int32_t noise_on = 0;
  int32_t freeze_on = 0;
  int32_t chorus_on = 0;
  float internal_carrier = 0.0F;
  float reserved = 0.0F;
  float env_average = 0.0F;
  float wet_gain = 0.0F;
  float dry_carrier_gain = 0.0F;
  float dry_modulator_gain = 0.0F;
  float reverb_level = 0.0F;
  float env_mix = 0.0F;
  float env_attack = 0.0F;
  float env_release = 0.0F;

  // Framing: the frame being filled, and the overlap-add outputs, whose first half is being played while the second
  // half is being built.
  frame modulator_frame{};
  frame carrier_frame{};
  frame ola_left{};
  frame ola_right{};
  frame dry_modulator_ring{};
  frame dry_carrier_ring{};
  int32_t dry_modulator_index = 0;
  int32_t dry_carrier_index = 0;
  double sample_counter = 0.0;  // LFO time of the chorus in samples
  motion_anchor chorus_anchor;

  // One frame's analysis. Complex arrays hold real and imaginary parts in turn.
  frame
      time_modulator{};  // windowed and normalised to at most full scale; the time-domain modes leave their result here
  frame time_carrier{};
  alignas(64) std::array<float, 2 * frame_size> complex_frame{};  // becomes the modulator's spectrum
  alignas(
      64) std::array<float, 2 * frame_size + 2> carrier_spectrum{};  // becomes the output spectrum; one bin to spare
  std::array<float, 2 * frame_size> held_spectrum{};  // modulator's spectrum as of the last unfrozen frame
  double noise_draw_a = 0.0;
  double noise_draw_b = 0.0;

  // Per bin, or per band in the filter-bank modes.
  bins fast_env{};
  bins slow_env{};
  bins carrier_mag{};
  bins carrier_phase{};
  bins target_env{};
  bins modulator_phase{};

  // Of the modulator's level sums in the wavelet modes, from the highest octave down. A change of mode keeps them.
  std::array<float, wavelet_level_count> wavelet_level_avg{};

  // Fixed after the first commit.
  int32_t fft_log2_size = 0;
  std::array<float, frame_size / 4 + 1> fft_cos_table{};
  frame hann_window{};
  frame trapezoid_window{};
  frame welch_window{};
  smoothing_tables smoothing{};
  filter_bank_coefficients band_filters{};

  std::array<float, wsyn_param_count> synth_params{};
  wsyn_state synth{};
  reverb_state reverb;
  distance_delay chorus_left;
  distance_delay chorus_right;

  int32_t frame_pos = 0;  // next write position in the frames
  note_list note_mirror{};

  lpc_workspace prediction{};
  frame_arena arena{};
};
