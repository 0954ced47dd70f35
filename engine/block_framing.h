// MIT License. From host blocks of any length at any rate to the core grid of 44100 Hz and back.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "engine/output_equaliser.h"
#include "engine/sound_values.h"
#include "engine/voco_state.h"

constexpr int32_t host_input_count = 4;   // 0 and 2 are heard
constexpr int32_t host_output_count = 2;  // left and right

// The signal path at the core rate.
struct vocoder_core {
  double rate_ratio = 1.0;                 // of the last block, a copy of the framing's
  double core_rate = core_sample_rate_hz;  // the equaliser's rate, whatever the host's
  output_equaliser equaliser;
  uint8_t busy = 0;  // for a debugger: 1 during `vocoder_core_process`
  voco_state state;
};

// One block's buffers at one rate. They keep the largest storage that they ever had.
struct block_buffers {
  std::array<std::vector<float>, host_input_count> inputs;
  std::array<std::vector<float>, host_output_count> outputs;
};

struct block_framing {
  double sample_rate = core_sample_rate_hz;  // of the host, Hz
  double rate_ratio = 1.0;                   // core frames of the last block over the ideal, fractional number
  block_buffers host;
  block_buffers core;
};

// Converts `n` samples of `source` to `m` samples of `destination` by linear interpolation over this block alone: no
// phase and no sample carry over from block to block. A source position past the block reads 0.
void convert_block(const float* source, int32_t n, float* destination, int32_t m);

// Runs a block of `frames` host samples. See `vocoder_process_sound` for inputs and outputs.
//   returns   0; 1 when there is no memory for the buffers, and nothing is written
int32_t vocoder_process_block(const sound_values& values, float chorus, int32_t frames, const float* const* inputs,
                              float* const* outputs, block_framing* framing, vocoder_core* core);

// Runs a block of `n` samples of the core grid: commit, signal path, equaliser.
//   inputs            of which 0 and 2 are heard; changed in place where samples are not finite
//   curve_offsets_db  when not null, the equaliser is prepared with these ten values added to its curve
void vocoder_core_process(const sound_values& values, float chorus, const float* curve_offsets_db, int32_t n,
                          block_buffers* buffers, vocoder_core* core);
