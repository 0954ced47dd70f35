// MIT License. Which pitches a sound has, and how they move.
#include "hosts/measures/pitch.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "hosts/measures/spectrum.h"

namespace measures {

namespace {

constexpr double nothing = std::numeric_limits<double>::quiet_NaN();

// A spectrum of all of the signal, as far as transforms reach, with a little padding for the interpolation.
power_spectrum long_spectrum(mono_view signal) {
  constexpr int32_t longest = 1 << 19;
  int32_t size = 1 << 15;
  while (size < longest && static_cast<std::size_t>(size) < 2 * signal.size()) size *= 2;
  const auto span = static_cast<int32_t>(std::min<std::size_t>(signal.size(), longest));
  return {size, std::min(size, span)};
}

// The peak around bin `k`, which is greater than its neighbours.
partial interpolated(const std::vector<double>& power, std::size_t k, double bin_hz) {
  const double below = decibels(power[k - 1]);
  const double here = decibels(power[k]);
  const double above = decibels(power[k + 1]);
  const double curvature = below - 2.0 * here + above;
  const double offset = curvature < 0.0 ? 0.5 * (below - above) / curvature : 0.0;
  return {(static_cast<double>(k) + offset) * bin_hz, power[k]};
}

// All peaks of the spectrum from `low_hz` to `high_hz`, the strongest first.
std::vector<partial> peaks_of(const std::vector<double>& power, double bin_hz, double low_hz, double high_hz) {
  std::vector<partial> peaks;
  const auto first = std::max<std::size_t>(1, static_cast<std::size_t>(low_hz / bin_hz));
  const auto last = std::min(power.size() - 1, static_cast<std::size_t>(high_hz / bin_hz) + 1);
  for (std::size_t k = first; k < last; ++k) {
    if (power[k] > power[k - 1] && power[k] >= power[k + 1]) peaks.push_back(interpolated(power, k, bin_hz));
  }
  std::sort(peaks.begin(), peaks.end(), [](const partial& a, const partial& b) { return a.power > b.power; });
  return peaks;
}

// Frames of a pitch track and of its spectra: 186 ms, whose bins of 5.4 Hz keep the harmonics of a chord apart.
constexpr std::size_t track_frame = 8192;
constexpr std::size_t track_hop = 2048;

double cents_between(double a_hz, double b_hz) {
  return 1200.0 * std::log2(a_hz / b_hz);
}

double cents_from_harmonic(double hz, const std::vector<double>& fundamentals_hz) {
  double nearest = std::numeric_limits<double>::infinity();
  for (const double fundamental : fundamentals_hz) {
    const double harmonic = std::max(1.0, std::round(hz / fundamental)) * fundamental;
    nearest = std::min(nearest, std::abs(cents_between(hz, harmonic)));
  }
  return nearest;
}

}  // namespace

std::vector<partial> strongest_partials(mono_view signal, double low_hz, double high_hz, std::size_t count) {
  constexpr double sideband_hz = 12.0;
  constexpr double sideband_power = 0.25;  // -6 dB
  constexpr double audible_power = 1e-4;   // of the strongest
  std::vector<partial> strongest;
  if (signal.empty()) return strongest;
  power_spectrum spectrum = long_spectrum(signal);
  const auto& power = spectrum.of(signal, 0);
  for (const partial& peak : peaks_of(power, spectrum.bin_hz(), low_hz, high_hz)) {
    if (strongest.size() == count || peak.power <= 0.0) break;
    if (!strongest.empty() && peak.power < audible_power * strongest.front().power) break;
    const bool is_sideband = std::any_of(strongest.begin(), strongest.end(), [&](const partial& other) {
      return std::abs(other.hz - peak.hz) < sideband_hz && peak.power < sideband_power * other.power;
    });
    if (!is_sideband) strongest.push_back(peak);
  }
  return strongest;
}

double tuning_error_cents(mono_view signal, const std::vector<double>& fundamentals_hz) {
  constexpr double lowest_hz = 60.0;
  constexpr std::size_t count = 8;
  if (fundamentals_hz.empty()) return nothing;
  const double highest_hz = 8.0 * *std::max_element(fundamentals_hz.begin(), fundamentals_hz.end());
  double error = 0.0;
  double sum = 0.0;
  for (const partial& each : strongest_partials(signal, lowest_hz, highest_hz, count)) {
    error += each.power * cents_from_harmonic(each.hz, fundamentals_hz);
    sum += each.power;
  }
  return sum > 0.0 ? error / sum : nothing;
}

modulation modulation_of(mono_view signal) {
  constexpr double slowest_hz = 0.7;  // the main lobes of two tones are apart, at three seconds
  constexpr double fastest_hz = 16.0;
  constexpr double least_power = 0.001;
  const auto strongest = strongest_partials(signal, 60.0, 4000.0, 1);
  if (strongest.empty()) return {nothing, 0.0};
  const partial& centre = strongest.front();
  power_spectrum spectrum = long_spectrum(signal);
  const auto& power = spectrum.of(signal, 0);
  for (const partial& peak :
       peaks_of(power, spectrum.bin_hz(), std::max(20.0, centre.hz - fastest_hz), centre.hz + fastest_hz)) {
    const double rate = std::abs(peak.hz - centre.hz);
    if (rate < slowest_hz || rate > fastest_hz) continue;
    if (peak.power < least_power * centre.power) break;
    return {rate, std::sqrt(peak.power / centre.power)};
  }
  return {nothing, 0.0};
}

double fundamental_hz(mono_view samples) {
  constexpr double lowest_hz = 70.0;
  constexpr double highest_hz = 400.0;
  constexpr double voiced = 0.6;
  constexpr auto longest = static_cast<std::size_t>(rate_hz / lowest_hz);
  constexpr auto shortest = static_cast<std::size_t>(rate_hz / highest_hz);
  if (samples.size() < 2 * longest) return 0.0;
  const std::size_t span = samples.size() - longest;
  std::vector<double> curve(longest + 1, 0.0);
  double energy = 0.0;
  for (std::size_t i = 0; i < span; ++i) energy += static_cast<double>(samples[i]) * static_cast<double>(samples[i]);
  if (energy <= 0.0) return 0.0;
  for (std::size_t lag = shortest; lag <= longest; ++lag) {
    double product = 0.0;
    double delayed = 0.0;
    for (std::size_t i = 0; i < span; ++i) {
      const auto later = static_cast<double>(samples[i + lag]);
      product += static_cast<double>(samples[i]) * later;
      delayed += later * later;
    }
    curve[lag] = delayed > 0.0 ? product / std::sqrt(energy * delayed) : 0.0;
  }
  const double best = *std::max_element(curve.begin(), curve.end());
  if (best < voiced) return 0.0;
  // Multiples of the period fit almost as well: the first good peak is the period.
  for (std::size_t lag = shortest + 1; lag < longest; ++lag) {
    if (curve[lag] > 0.9 * best && curve[lag] >= curve[lag - 1] && curve[lag] >= curve[lag + 1]) {
      return static_cast<double>(rate_hz) / static_cast<double>(lag);
    }
  }
  return 0.0;
}

pitch_track pitch_track_of(mono_view voice) {
  constexpr std::size_t span = rate_hz / 20;
  pitch_track track;
  for (std::size_t start = 0; start + track_frame <= voice.size(); start += track_hop) {
    track.hz.push_back(fundamental_hz(voice.subspan(start + track_frame / 2 - span / 2, span)));
  }
  return track;
}

double chord_share(const pitch_track& voice, mono_view processed, const std::vector<double>& fundamentals_hz) {
  constexpr double reach_hz = 8.0;  // to both sides of a harmonic, somewhat less than the main lobe
  constexpr double lowest_hz = 80.0;
  constexpr double highest_hz = 800.0;

  enum place : std::size_t { of_neither, of_chord, of_voice, of_both };
  std::array<double, 4> power_at{};
  std::array<double, 4> bins_at{};
  power_spectrum spectrum(track_frame);
  for (std::size_t i = 0; i < voice.hz.size(); ++i) {
    const double voice_hz = voice.hz[i];
    if (voice_hz == 0.0) continue;
    const auto& power = spectrum.of(processed, static_cast<int64_t>(i * track_hop));
    const auto near = [&](double hz, double fundamental) {
      const double harmonic = std::max(1.0, std::round(hz / fundamental)) * fundamental;
      return std::abs(hz - harmonic) < reach_hz;
    };
    for (std::size_t k = 0; k < power.size(); ++k) {
      const double hz = static_cast<double>(k) * spectrum.bin_hz();
      if (hz < lowest_hz || hz > highest_hz) continue;
      const bool chord = std::any_of(fundamentals_hz.begin(), fundamentals_hz.end(),
                                     [&](double fundamental) { return near(hz, fundamental); });
      const std::size_t where = (chord ? of_chord : of_neither) + (near(hz, voice_hz) ? of_voice : of_neither);
      power_at[where] += power[k];
      bins_at[where] += 1.0;
    }
  }
  const auto density = [&](place where) { return bins_at[where] > 0.0 ? power_at[where] / bins_at[where] : 0.0; };
  const double chord = std::max(0.0, density(of_chord) - density(of_neither));
  const double other = std::max(0.0, density(of_voice) - density(of_neither));
  return chord + other > 0.0 ? chord / (chord + other) : nothing;
}

}  // namespace measures
