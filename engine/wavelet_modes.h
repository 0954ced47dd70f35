// MIT License. The vocoders that work per octave: the carrier's wavelet transform gets the modulator's loudness
// level by level.
#pragma once

#include <cstdint>

struct voco_state;

// Mode 12: with the 4-tap filters, whose steps leak into each other. A level of the modulator passes while it is above
// half of its own recent average, which keeps onsets and drops quiet passages. The result replaces `modulator`.
//   shapes    modulator[n], carrier[n], samples within full scale; n is a power of two from 2 to 1024
//   audio     takes its work buffers from the arena; when it is exhausted, `modulator` stays unchanged
//   state     reads and advances wavelet_level_avg
void vocoder_wavelet(float* modulator, const float* carrier, int32_t n, voco_state* state);

// The two uses of the 6-tap and the 76-tap filters.
enum class wavelet_pair {
  split_by_level,  // mode 13: the four highest octaves of 6 taps, the levels below of 76, gated as in mode 12
  long_only,       // mode 14: every level of 76 taps, without the gate; sets wavelet_level_avg to 0
};

// Modes 13 and 14. Shapes, memory and result as vocoder_wavelet.
void vocoder_wavelet_pair(wavelet_pair pair, float* modulator, const float* carrier, int32_t n, voco_state* state);
