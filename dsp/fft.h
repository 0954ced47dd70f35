// MIT License. Complex FFT of power-of-two size, in place and in single precision.
#pragma once

#include <cstdint>

// Signals are 2N floats, real and imaginary parts alternating, in natural order before and after; N = 2^log2_size.
// There is no state other than the caller's table, so transforms may run on any number of threads at once, and they use
// neither heap nor locks.

constexpr int32_t fft_min_log2_size = 3;
constexpr int32_t fft_max_log2_size = 19;  // the two halves of an index are reversed by a table of 8 bits

// Fills the quarter wave from which transforms of `size` points take all their sines and cosines.
//   log2_size  receives log2(size) rounded to the nearest integer, also when the size is refused
//   table      size / 4 + 1 floats, [i] = cos(2 pi i / size); read-only afterwards
//   returns    0; 1 when `size` isn't a power of two from 8 to 524288, and `table` stays as it was
int32_t fft_cos_table_init(int32_t* log2_size, int32_t size, float* table);

// Transforms `data` in place: X[k] = sum over n of x[n] e^(-2 pi i n k / N), without scaling.
//   log2_size, table  as fft_cos_table_init accepted and filled them; neither is checked
//   error             below 2e-5 in either part of every bin at 1024 points of circular complex noise of unit variance,
//                     whose bins have a deviation of 32; 4e-6 root mean square
void fft_forward(float* data, int32_t log2_size, const float* table);

// Transforms `data` in place: x[n] = 1/N times the sum over k of X[k] e^(+2 pi i n k / N). Undoes fft_forward.
void fft_inverse(float* data, int32_t log2_size, const float* table);

// The same with the instructions for every processor, or with those of AVX2, which the processor has to have. Both give
// the same bits.
void fft_forward_with(bool avx2, float* data, int32_t log2_size, const float* table);
void fft_inverse_with(bool avx2, float* data, int32_t log2_size, const float* table);
