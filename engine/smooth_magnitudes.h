// MIT License. Smooths a magnitude spectrum by keeping the middle of its inverse transform (a cepstrum without the
// log).
#pragma once

#include <array>
#include <cstdint>

constexpr int32_t smoothing_size = 1024;  // points of the transform

// Tables of one engine. They aren't shared, as a change of width rewrites them.
struct smoothing_tables {
  int32_t initialised = 0;
  int32_t fft_log2_size = 0;
  std::array<float, smoothing_size / 4 + 1> fft_cos_table{};
  std::array<float, smoothing_size / 2 + 1> shift_cos{};  // cos(pi k): moves the transform's centre to its middle
  std::array<float, smoothing_size / 2 + 1> shift_sin{};  // sin(pi k)
  std::array<float, smoothing_size> window{};
  int32_t window_width = 0;  // the width that `window` was made for
};

// Smooths `magnitudes` into `result`; the smaller `width`, the coarser the result.
//   shapes    magnitudes[n / 2 + 1], result[n / 2 + 1]; they may be the same array. n is `smoothing_size`
//   width     even, 2 to n - 2: samples that the Blackman window keeps around the middle
//   scale     a constant spectrum stays about the same
//   audio     no heap; the first call and each change of width build tables
void smooth_magnitudes(const float* magnitudes, int32_t n, int32_t width, float* result, smoothing_tables* tables);
