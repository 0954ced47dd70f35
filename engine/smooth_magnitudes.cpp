// MIT License.
#include "engine/smooth_magnitudes.h"

#include <cmath>
#include <numbers>

#include "dsp/fft.h"

namespace {

constexpr double pi = std::numbers::pi;

void build_transform_tables(smoothing_tables* tables) {
  fft_cos_table_init(&tables->fft_log2_size, smoothing_size, tables->fft_cos_table.data());
  for (size_t k = 0; k < tables->shift_cos.size(); ++k) {
    tables->shift_cos[k] = static_cast<float>(std::cos(pi * static_cast<double>(k)));
    tables->shift_sin[k] = static_cast<float>(std::sin(pi * static_cast<double>(k)));
  }
  tables->initialised = 1;
}

// A Blackman window over the entries from `low` to `high`, both included, and zero elsewhere.
void build_window(int32_t low, int32_t high, smoothing_tables* tables) {
  tables->window.fill(0.0F);
  const double width = high - low;
  for (int32_t i = low; i <= high; ++i) {
    const double turn = 2.0 * pi * (i - low) / width;
    tables->window[static_cast<size_t>(i)] =
        0.42F - 0.5F * static_cast<float>(std::cos(turn)) + 0.08F * static_cast<float>(std::cos(2.0 * turn));
  }
  tables->window_width = high - low;
}

}  // namespace

void smooth_magnitudes(const float* magnitudes, int32_t n, int32_t width, float* result, smoothing_tables* tables) {
  if (tables->initialised == 0) build_transform_tables(tables);

  alignas(64) std::array<float, 2 * smoothing_size> work;
  float* const data = work.data();
  for (int32_t k = 0; k <= n / 2; ++k) {
    data[2 * k] = magnitudes[k] * tables->shift_cos[static_cast<size_t>(k)];
    data[2 * k + 1] = magnitudes[k] * tables->shift_sin[static_cast<size_t>(k)];
  }
  for (int32_t i = n + 2; i < 2 * n; ++i) data[i] = 0.0F;
  fft_inverse(data, tables->fft_log2_size, tables->fft_cos_table.data());

  const int32_t low = n / 2 - width / 2;
  const int32_t high = n / 2 + width / 2;
  if (high - low != tables->window_width) build_window(low, high, tables);
  for (int32_t i = 0; i < n; ++i) {
    data[2 * i] *= tables->window[static_cast<size_t>(i)];
    data[2 * i + 1] = 0.0F;
  }
  fft_forward(data, tables->fft_log2_size, tables->fft_cos_table.data());

  for (int32_t k = 0; k <= n / 2; ++k) {
    const float re = data[2 * k];
    const float im = data[2 * k + 1];
    result[k] = 2.0F * std::sqrt(re * re + im * im);
  }
}
