// MIT License. Power spectra of windowed stretches of a signal.
#include "hosts/measures/spectrum.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

#include "dsp/fft.h"

namespace measures {

power_spectrum::power_spectrum(int32_t size, int32_t span)
    : table_(static_cast<std::size_t>(size / 4 + 1)),
      window_(static_cast<std::size_t>(span)),
      points_(static_cast<std::size_t>(2 * size)),
      power_(static_cast<std::size_t>(size / 2 + 1)) {
  fft_cos_table_init(&log2_size_, size, table_.data());
  // Half a step in from both ends, so that no sample is lost to a zero.
  for (std::size_t i = 0; i < window_.size(); ++i) {
    window_[i] = 1.0 - std::cos(2.0 * std::numbers::pi * (static_cast<double>(i) + 0.5) / span);
  }
  const double sum = std::accumulate(window_.begin(), window_.end(), 0.0);
  for (double& weight : window_) weight *= 2.0 / sum;
}

const std::vector<double>& power_spectrum::of(mono_view signal, int64_t start) {
  std::fill(points_.begin(), points_.end(), 0.0F);
  const auto count = static_cast<int64_t>(signal.size());
  for (std::size_t i = 0; i < window_.size(); ++i) {
    const int64_t at = start + static_cast<int64_t>(i);
    if (at < 0 || at >= count) continue;
    points_[2 * i] = static_cast<float>(window_[i] * static_cast<double>(signal[static_cast<std::size_t>(at)]));
  }
  fft_forward(points_.data(), log2_size_, table_.data());
  for (std::size_t k = 0; k < power_.size(); ++k) {
    const double real = static_cast<double>(points_[2 * k]);
    const double imaginary = static_cast<double>(points_[2 * k + 1]);
    power_[k] = real * real + imaginary * imaginary;
  }
  return power_;
}

double band_power(const std::vector<double>& power, double bin_hz, double low_hz, double high_hz) {
  const auto bin_from = [&](double hz) {
    return std::min(power.size(), static_cast<std::size_t>(std::max(0.0, std::ceil(hz / bin_hz))));
  };
  double sum = 0.0;
  for (std::size_t k = bin_from(low_hz); k < bin_from(high_hz); ++k) sum += power[k];
  return sum;
}

double decibels(double power) {
  constexpr double smallest = 1e-20;
  return 10.0 * std::log10(std::max(power, smallest));
}

std::vector<double> third_octave_edges(double lowest_hz, int count) {
  std::vector<double> edges;
  for (int band = 0; band <= count; ++band) edges.push_back(lowest_hz * std::exp2((band - 0.5) / 3.0));
  return edges;
}

}  // namespace measures
