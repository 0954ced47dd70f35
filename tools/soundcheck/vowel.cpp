// MIT License. A sung vowel.
#include "tools/soundcheck/vowel.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace {

constexpr double rate_hz = 44100.0;
constexpr double highest_hz = 10000.0;
constexpr double fade_seconds = 0.05;

struct formant {
  double hz;
  double bandwidth_hz;
};

// /a/ of table II; the fourth and fifth are those of all vowels.
constexpr formant formants[] = {{700, 130}, {1220, 70}, {2600, 160}, {3300, 250}, {3750, 200}};

// The level of a harmonic at `hz`. A formant is a resonator of second order with a gain of 1 at DC. The source with the
// lips falls by 6 dB an octave.
double level_at(double hz) {
  double level = 100.0 / hz;
  const std::complex<double> s(0.0, hz);
  for (const auto& [centre, bandwidth] : formants) {
    level *= centre * centre / std::abs(s * s + s * bandwidth + centre * centre);
  }
  return level;
}

}  // namespace

std::vector<float> sung_vowel(const vowel_voice& voice) {
  const auto count = static_cast<std::size_t>(std::llround(voice.seconds * rate_hz));
  std::vector<double> phases(count);  // of the fundamental
  std::vector<double> pitches_hz(count);
  double phase = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    const double time = static_cast<double>(i) / rate_hz;
    const double cents = voice.vibrato_cents * std::sin(2.0 * std::numbers::pi * voice.vibrato_hz * time);
    pitches_hz[i] = voice.pitch_hz * std::exp2(cents / 1200.0);
    phases[i] = phase;
    phase += 2.0 * std::numbers::pi * pitches_hz[i] / rate_hz;
  }

  std::vector<double> sum(count, 0.0);
  const auto harmonics = static_cast<int>(highest_hz / voice.pitch_hz);
  // Levels change no faster than the vibrato, so one in 64 samples is enough.
  constexpr std::size_t level_samples = 64;
  for (int k = 1; k <= harmonics; ++k) {
    double level = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
      if (i % level_samples == 0) level = level_at(k * pitches_hz[i]);
      sum[i] += level * std::sin(k * phases[i]);
    }
  }

  double peak = 0.0;
  const auto fade = static_cast<std::size_t>(fade_seconds * rate_hz);
  for (std::size_t i = 0; i < count; ++i) {
    const double from_end = static_cast<double>(std::min(i, count - 1 - i));
    sum[i] *= std::min(1.0, from_end / static_cast<double>(fade));
    peak = std::max(peak, std::abs(sum[i]));
  }
  std::vector<float> samples(count);
  std::transform(sum.begin(), sum.end(), samples.begin(), [peak](double x) { return static_cast<float>(x / peak); });
  return samples;
}
