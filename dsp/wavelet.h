// MIT License. The discrete wavelet transform of a frame: octave bands by repeated halving, and back.
#pragma once

#include <cstdint>
#include <span>

#include "dsp/filter_sets.h"

// Method: S. Mallat, "A theory for multiresolution signal decomposition", IEEE PAMI 11(7), 1989. Every sum runs in
// single precision in the order of the taps, so that a frame has one result on every processor.
//
// A step splits a low band of n samples into (n + 1) / 2 low and n / 2 high ones. A transformed signal starts with the
// last low band, followed by the high bands from the coarsest to the finest. With 1024 samples and 9 steps these are
// 2 low samples, then bands of 2, 4, 8 up to 512.

// How a band is extended at its ends. Symmetric extension reconstructs every length at every step; periodic
// extension needs even lengths.
constexpr int32_t wavelet_extension_of_set = -1;
constexpr int32_t wavelet_extension_periodic = 0;
constexpr int32_t wavelet_extension_symmetric = 1;

// A transform by the filters of a set, which has to outlive it. Nothing needs to be released.
struct wavelet {
  const wavelet_filter* analysis_low = nullptr;
  const wavelet_filter* analysis_high = nullptr;
  const wavelet_filter* synthesis_low = nullptr;
  const wavelet_filter* synthesis_high = nullptr;
  int32_t symmetric = 0;
  bool wide = false;  // runs in vectors of 256 bits, with the same results; bound so where the processor has them
  int32_t pad = 0;    // samples that a band is extended by on either side, so that filters run over the ends
};

void wavelet_bind(const filter_set& set, wavelet* transform);

// Floats of work memory that either direction needs for a signal of `size` samples.
int32_t wavelet_workspace_size(const wavelet& transform, int32_t size);

// Takes `steps` steps on `input`; none copies it. Two samples or fewer are too short for a step with a symmetric set:
// the transform prints a line on standard output at each such step and continues.
//   shapes     input[size], output[size], which may be the same array; workspace[wavelet_workspace_size] or more, of
//              which nothing is kept between calls
//   returns    0; 1 when the workspace is too small or the size below 1, and `output` stays as it was
//   audio      no heap
int32_t wavelet_forward(const wavelet& transform, const float* input, float* output, int32_t size, int32_t steps,
                        int32_t extension, std::span<float> workspace);

// Takes the steps for their last low band alone, at half the cost: its samples start `output`, whose rest stays as it
// was. Otherwise as wavelet_forward.
int32_t wavelet_forward_low(const wavelet& transform, const float* input, float* output, int32_t size, int32_t steps,
                            int32_t extension, std::span<float> workspace);

// Undoes `steps` steps. Shapes and result as wavelet_forward; nothing is printed.
int32_t wavelet_inverse(const wavelet& transform, const float* input, float* output, int32_t size, int32_t steps,
                        int32_t extension, std::span<float> workspace);

// The same from the last low band alone, as though all high bands were 0. Of `input` only that band is read.
int32_t wavelet_inverse_low(const wavelet& transform, const float* input, float* output, int32_t size, int32_t steps,
                            int32_t extension, std::span<float> workspace);
