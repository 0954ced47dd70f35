// MIT License. Sines, and what is heard of them.
#pragma once

#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>
#include <vector>

using waveform = std::vector<float>;

inline double phase_of(double frequency_hz, double rate_hz, int64_t frame) {
  return 2 * std::numbers::pi * frequency_hz * static_cast<double>(frame) / rate_hz;
}

inline waveform sine(double frequency_hz, double rate_hz, int64_t frames) {
  waveform samples;
  for (int64_t frame = 0; frame < frames; ++frame) {
    samples.push_back(static_cast<float>(0.5 * std::sin(phase_of(frequency_hz, rate_hz, frame))));
  }
  return samples;
}

// Amplitude and phase of a sine in `samples` from `first` on, and how far below it everything else is that is higher
// than `low_cut_hz`.
struct heard_sine {
  std::complex<double> amplitude;
  double distortion_db;
};
inline heard_sine hear(const waveform& samples, size_t first, double frequency_hz, double rate_hz,
                       double low_cut_hz = 0) {
  // A whole number of periods at all rates used here: they and the frequencies are multiples of 50 Hz.
  const auto count = static_cast<size_t>(rate_hz / 50) * 10;
  std::complex<double> amplitude = 0;
  for (size_t i = 0; i < count; ++i) {
    amplitude +=
        std::polar(2.0 / static_cast<double>(count), -phase_of(frequency_hz, rate_hz, static_cast<int64_t>(i))) *
        static_cast<double>(samples.at(first + i));
  }
  // Two low-passes in a row, whose output is subtracted.
  const double share = 1 - std::exp(-2 * std::numbers::pi * low_cut_hz / rate_hz);
  double once = 0;
  double twice = 0;
  double rest = 0;
  for (size_t i = 0; i < count; ++i) {
    const double phase = phase_of(frequency_hz, rate_hz, static_cast<int64_t>(i));
    const double error = samples.at(first + i) - (amplitude * std::polar(1.0, phase)).real();
    once += share * (error - once);
    twice += share * (once - twice);
    rest += (error - twice) * (error - twice);
  }
  return {amplitude, 10 * std::log10(std::norm(amplitude) / 2 * static_cast<double>(count) / rest)};
}
