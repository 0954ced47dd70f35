// MIT License. The signal state of the vocoder, for one core.
#pragma once

#include <array>
#include <cstdint>

#include "dsp/linear_prediction.h"
#include "dsp/wsyn.h"
#include "engine/band_filters.h"
#include "engine/chorus.h"
#include "engine/frame_arena.h"
#include "engine/notes.h"
#include "engine/reverb.h"
#include "engine/smooth_magnitudes.h"

constexpr int32_t core_sample_rate_hz = 44100;  // the grid on which all signal work runs
constexpr int32_t frame_size = 1024;            // samples of an analysis frame, and the latency
constexpr int32_t frame_hop = 512;              // samples from one frame to the next
constexpr int32_t bin_count = frame_size / 2;   // spectral bins in use, 43.07 Hz apart
constexpr int32_t wavelet_level_count = 10;     // nine octaves of a frame, and the lowest of its detail samples

constexpr uint32_t voco_state_tag = 0x766f636f;  // "voco"

// Some 1.1 MB. Zeroed when made; `voco_prepare` and the first commit complete it. Everything belongs to the thread that
// processes.
struct voco_state {
  using frame = std::array<float, frame_size>;
  using bins = std::array<float, frame_size>;  // `bin_count` are in use, and one more where an algorithm says so

  // Progress, for a debugger or a crash dump; the code reads `committed` alone.
  uint32_t tag = 0;           // voco_state_tag from the first commit on
  int32_t committed = 0;      // 1 from the end of the first commit on
  int32_t committing = 0;     // 1 during `voco_commit`
  int32_t in_block = 0;       // 1 during `voco_process`
  int32_t in_frame_loop = 0;  // 1 during its loop over frames

  // Settings of the block. Written by `voco_commit`; read by `voco_process`, the frame step and the algorithms.
  int32_t mode = 0;
  int32_t sibilance_on = 0;
  int32_t noise_on = 0;
  int32_t freeze_on = 0;
  int32_t chorus_on = 0;
  float internal_carrier = 0.0F;
  float reserved = 0.0F;  // not read
  float env_average = 0.0F;
  float wet_gain = 0.0F;
  float dry_carrier_gain = 0.0F;
  float dry_modulator_gain = 0.0F;
  float reverb_level = 0.0F;
  float env_mix = 0.0F;
  float env_attack = 0.0F;
  float env_release = 0.0F;

  // Frames and rings. `voco_process` fills the frames, plays the first half of the overlap-add outputs and runs the
  // rings; the frame step moves frames and outputs on by a hop, and the algorithms' results are added to the outputs.
  frame modulator_frame{};
  frame carrier_frame{};
  frame ola_left{};
  frame ola_right{};
  frame dry_modulator_ring{};
  frame dry_carrier_ring{};
  int32_t dry_modulator_index = 0;
  int32_t dry_carrier_index = 0;

  // One frame's analysis. Written by the frame step, replaced in place by the algorithms. Complex arrays hold real and
  // imaginary parts in turn.
  frame time_modulator{};  // windowed and normalised to at most full scale; holds the result of algorithms on samples
  frame time_carrier{};
  alignas(64) std::array<float, 2 * frame_size> complex_frame{};  // becomes the modulator's spectrum
  // Becomes the output's spectrum; one bin to spare.
  alignas(64) std::array<float, 2 * frame_size + 2> carrier_spectrum{};
  std::array<float, 2 * frame_size> held_spectrum{};  // modulator's spectrum as of the last unfrozen frame
  double noise_draw_a = 0.0;                          // drawn by the frame step, read by its test alone
  double noise_draw_b = 0.0;

  // Followers, per bin, or per band in the filter banks. Written and read by the algorithms on bins and the filter
  // banks; `voco_commit` clears them when the mode changes.
  bins fast_env{};
  bins slow_env{};
  bins carrier_mag{};
  bins carrier_phase{};  // radians
  bins target_env{};
  // Cosines and sines of the modulator's phases, as held by freeze: those of four bins after each other, in turn.
  bins modulator_phase{};

  // Averages of the modulator's level sums, from the highest octave down. Written and read by the wavelet algorithms;
  // a change of mode keeps them.
  std::array<float, wavelet_level_count> wavelet_level_avg{};

  // Tables. Copied by the first commit from those of the process; read by the frame step and the algorithms. Those for
  // smoothing are built and changed by `smooth_magnitudes`.
  int32_t fft_log2_size = 0;
  std::array<float, frame_size / 4 + 1> fft_cos_table{};
  frame hann_window{};
  frame trapezoid_window{};
  frame welch_window{};
  smoothing_tables smoothing{};
  filter_bank_coefficients band_filters{};

  // The synthesizer. Its parameters are written and read by `voco_commit`; the record also by the note operations,
  // by `voco_process`, which renders, and by the frame step, which modulates its pitch.
  std::array<float, wsyn_param_count> synth_params{};
  wsyn_state synth{};

  // Effects. Configured by `voco_commit`, run by `voco_process`.
  reverb_state reverb;
  chorus_state chorus;

  int32_t frame_pos = 0;    // next write position in the frames; moved by `voco_process`, set back by the frame step
  note_list note_mirror{};  // written and read by the note operations

  // Work space. Its contents last for one frame step.
  lpc_workspace prediction{};
  frame_arena arena{};
};
