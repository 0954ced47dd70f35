// MIT License. The wavelet transform in plain loops: the judge of the fast one.
#pragma once

#include <algorithm>
#include <vector>

#include "dsp/filter_sets.h"
#include "dsp/wavelet.h"

namespace plain {

using line = std::vector<float>;

inline float& at(line& x, int32_t i) {
  return x[static_cast<size_t>(i)];
}

inline float tap(const wavelet_filter& filter, int32_t j) {
  return filter.coefficients[static_cast<size_t>(j)];
}

inline line line_for(int32_t size, int32_t pad) {
  return line(static_cast<size_t>(size + 2 * pad));
}

inline void extend_periodically(int32_t size, int32_t pad, line& x) {
  for (int32_t i = pad - 1; i >= 0; --i) at(x, i) = at(x, i + size);
  for (int32_t i = pad + size; i < size + 2 * pad; ++i) at(x, i) = at(x, i - size);
}

// An end of 1 is a whole-sample symmetry, one of 2 a half-sample symmetry. The position of an image is found by
// walking, one reflection at a time.
inline void extend_symmetrically(int32_t left, int32_t right, float sign, int32_t size, int32_t pad, line& x) {
  const line signal(x.begin() + pad, x.begin() + pad + size);
  for (int32_t i = 0; i < size + 2 * pad; ++i) {
    int32_t t = i - pad;
    float image_sign = 1.0F;
    bool odd_point = size == 0;
    while (!odd_point && (t < 0 || t >= size)) {
      if (sign < 0.0F && ((left == 1 && t == -1) || (right == 1 && t == size))) {
        odd_point = true;
      } else {
        // With a negative sign, a whole-sample end is one sample beyond the signal.
        const int32_t left_sum = left == 2 ? -1 : (sign < 0.0F ? -2 : 0);
        const int32_t right_sum = right == 2 ? 2 * size - 1 : (sign < 0.0F ? 2 * size : 2 * size - 2);
        if (left_sum == 0 && right_sum == 0 && size == 1) {
          t = 0;
        } else {
          t = (t < 0 ? left_sum : right_sum) - t;
          image_sign *= sign;
        }
      }
    }
    at(x, i) = odd_point ? 0.0F : image_sign * signal[static_cast<size_t>(t)];
  }
}

inline float correlate(const wavelet_filter& filter, line& x, int32_t first) {
  float sum = 0.0F;
  for (int32_t j = 0; j < filter.size; ++j) sum += tap(filter, j) * at(x, first + filter.first_index + j);
  return sum;
}

inline line forward_step(const wavelet& w, bool symmetric, int32_t size, line& in) {
  const int32_t ends = w.analysis_low->size % 2 == 0 ? 2 : 1;
  if (symmetric) {
    extend_symmetrically(ends, ends, 1.0F, size, w.pad, in);
  } else {
    extend_periodically(size, w.pad, in);
  }
  line out = line_for(size, w.pad);
  const int32_t low = (size + 1) / 2;
  for (int32_t i = 0; i < low; ++i) at(out, w.pad + i) = correlate(*w.analysis_low, in, w.pad + 2 * i);
  for (int32_t i = low; i < size; ++i) at(out, w.pad + i) = correlate(*w.analysis_high, in, w.pad + 2 * (i - low));
  return out;
}

inline void accumulate(const wavelet_filter& filter, int32_t size, int32_t pad, line& band, line& out) {
  const int32_t f = filter.first_index;
  const int32_t e = filter.size + f - 1;
  for (int32_t i = -(e / 2); i <= (size - f - 1) / 2; ++i) {
    for (int32_t j = 0; j < filter.size; ++j) at(out, pad + 2 * i + f + j) += tap(filter, j) * at(band, pad + i);
  }
}

inline line inverse_step(const wavelet& w, bool symmetric, int32_t size, line& in) {
  const int32_t low = (size + 1) / 2;
  const int32_t high = size / 2;
  const bool even_taps = w.analysis_low->size % 2 == 0;
  const bool even_size = size % 2 == 0;
  line band = line_for(low, w.pad);
  line out = line_for(size, w.pad);
  for (int32_t i = 0; i < low; ++i) at(band, w.pad + i) = at(in, w.pad + i);
  if (symmetric) {
    extend_symmetrically(even_taps ? 2 : 1, even_size ? 2 : 1, 1.0F, low, w.pad, band);
  } else {
    extend_periodically(low, w.pad, band);
  }
  accumulate(*w.synthesis_low, size, w.pad, band, out);
  for (int32_t i = 0; i < high; ++i) at(band, w.pad + i) = at(in, w.pad + i + low);
  if (!symmetric) {
    extend_periodically(high, w.pad, band);
  } else if (even_taps) {
    extend_symmetrically(2, even_size ? 2 : 1, -1.0F, high, w.pad, band);
  } else {
    extend_symmetrically(2, even_size ? 1 : 2, 1.0F, high, w.pad, band);
  }
  accumulate(*w.synthesis_high, size, w.pad, band, out);
  return out;
}

inline bool symmetric_of(const wavelet& w, int32_t extension) {
  return (extension == -1 ? w.symmetric : extension) == 1;
}

inline void forward(const wavelet& w, const float* input, float* output, int32_t size, int32_t steps,
                    int32_t extension = -1) {
  line current = line_for(size, w.pad);
  std::copy_n(input, size, current.begin() + w.pad);
  for (int32_t step = 0; step < steps; ++step) {
    const line next = forward_step(w, symmetric_of(w, extension), size, current);
    const int32_t low = (size + 1) / 2;
    std::copy_n(next.begin() + w.pad + low, size / 2, output + low);
    size = low;
    current = line_for(size, w.pad);
    std::copy_n(next.begin() + w.pad, size, current.begin() + w.pad);
  }
  std::copy_n(current.begin() + w.pad, size, output);
}

inline void inverse(const wavelet& w, const float* input, float* output, int32_t size, int32_t steps,
                    int32_t extension = -1) {
  std::vector<int32_t> sizes = {size};
  for (int32_t step = 0; step < steps; ++step) sizes.push_back((sizes.back() + 1) / 2);
  line current = line_for(size, w.pad);
  std::copy_n(input, sizes.back(), current.begin() + w.pad);
  for (int32_t step = steps - 1; step >= 0; --step) {
    const int32_t whole = sizes[static_cast<size_t>(step)];
    const int32_t low = (whole + 1) / 2;
    std::copy_n(input + low, whole / 2, current.begin() + w.pad + low);
    current = inverse_step(w, symmetric_of(w, extension), whole, current);
    current.resize(static_cast<size_t>(size + 2 * w.pad));
  }
  std::copy_n(current.begin() + w.pad, size, output);
}

}  // namespace plain
