// MIT License. Power spectra of windowed stretches of a signal.
#pragma once

#include <cstdint>
#include <vector>

#include "hosts/measures/signal.h"

namespace measures {

// Transforms stretches of one size under a Hann window. One object per thread.
class power_spectrum {
 public:
  //   size   a power of two from 8 to 524288
  //   span   samples under the window, at most `size`; the rest of the transform is zeros
  power_spectrum(int32_t size, int32_t span);
  explicit power_spectrum(int32_t size) : power_spectrum(size, size) {}

  int32_t size() const { return static_cast<int32_t>(2 * (power_.size() - 1)); }
  int32_t span() const { return static_cast<int32_t>(window_.size()); }
  double bin_hz(double rate = rate_hz) const { return rate / size(); }

  // The spectrum of the stretch that begins at `start`; samples outside of the signal are 0.
  //   returns   size / 2 + 1 powers, valid until the next call. A sine of amplitude a has a squared at its bin.
  const std::vector<double>& of(mono_view signal, int64_t start);

 private:
  std::vector<float> table_;  // of the transform
  int32_t log2_size_ = 0;
  std::vector<double> window_;  // sums to 2, so that half the amplitude of a real sine becomes all of it
  std::vector<float> points_;
  std::vector<double> power_;
};

// The sum of `power` from `low_hz` up to, but not including, `high_hz`.
double band_power(const std::vector<double>& power, double bin_hz, double low_hz, double high_hz);

// 10 log10(power), at least -200.
double decibels(double power);

// Edges of third-octave bands, a factor of 2^(1/3) apart: `count` + 1 of them around `count` centres from `lowest_hz`.
std::vector<double> third_octave_edges(double lowest_hz, int count);

}  // namespace measures
