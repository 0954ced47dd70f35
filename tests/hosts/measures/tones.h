// MIT License. Test signals whose measurements are known in advance.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

#include "hosts/measures/signal.h"
#include "tests/words/signals.h"

namespace tones {

inline std::size_t samples_of(double seconds) {
  return static_cast<std::size_t>(std::lround(seconds * measures::rate_hz));
}

// A sine from phase 0.
inline std::vector<float> sine(double hz, double seconds, double amplitude = 0.5, double phase = 0.0) {
  std::vector<float> out(samples_of(seconds));
  for (std::size_t i = 0; i < out.size(); ++i) {
    const double turns = hz * static_cast<double>(i) / measures::rate_hz;
    out[i] = static_cast<float>(amplitude * std::sin(2.0 * std::numbers::pi * turns + phase));
  }
  return out;
}

inline std::vector<float> sum(std::vector<float> a, const std::vector<float>& b) {
  for (std::size_t i = 0; i < a.size() && i < b.size(); ++i) a[i] += b[i];
  return a;
}

inline std::vector<float> scaled(std::vector<float> signal, double by) {
  for (float& x : signal) x *= static_cast<float>(by);
  return signal;
}

inline std::vector<float> joined(std::vector<float> a, const std::vector<float>& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

inline std::vector<float> silence(double seconds) {
  return std::vector<float>(samples_of(seconds), 0.0F);
}

// Twelve harmonics that fall by 6 dB an octave.
inline std::vector<float> harmonic_tone(double hz, double seconds) {
  std::vector<float> out(samples_of(seconds), 0.0F);
  for (int k = 1; k <= 12; ++k) out = sum(std::move(out), sine(k * hz, seconds, 0.2 / k));
  return out;
}

inline double raised(double hz, double cents) {
  return hz * std::exp2(cents / 1200.0);
}

// The amplitude of `signal` moves by `depth` of itself at `rate_hz`.
inline std::vector<float> tremolo(std::vector<float> signal, double rate_hz, double depth) {
  for (std::size_t i = 0; i < signal.size(); ++i) {
    const double turns = rate_hz * static_cast<double>(i) / measures::rate_hz;
    signal[i] *= static_cast<float>(1.0 + depth * std::sin(2.0 * std::numbers::pi * turns));
  }
  return signal;
}

}  // namespace tones
