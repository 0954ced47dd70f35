// MIT License. The colour of a sound, and how different two sounds are.
#include "hosts/measures/tone.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <numeric>

#include "hosts/measures/spectrum.h"

namespace measures {

namespace {

// The mean spectrum over the signal, in frames that overlap by half.
std::vector<double> mean_power(mono_view signal, power_spectrum* spectrum) {
  std::vector<double> sum(static_cast<std::size_t>(spectrum->size() / 2 + 1), 0.0);
  double frames = 0.0;
  for (int64_t start = 0; start < static_cast<int64_t>(signal.size()); start += spectrum->span() / 2) {
    const auto& power = spectrum->of(signal, start);
    std::transform(sum.begin(), sum.end(), power.begin(), sum.begin(), std::plus<>());
    frames += 1.0;
  }
  for (double& power : sum) power /= std::max(frames, 1.0);
  return sum;
}

constexpr double shape_floor_db = -60.0;
constexpr double chroma_floor_db = -30.0;
constexpr double modulation_floor_db = -40.0;

double rms_difference(const std::vector<double>& a, const std::vector<double>& b) {
  double sum = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) sum += (a[i] - b[i]) * (a[i] - b[i]);
  return a.empty() ? 0.0 : std::sqrt(sum / static_cast<double>(a.size()));
}

}  // namespace

double spectral_centroid_hz(mono_view signal) {
  power_spectrum spectrum(2048);
  const auto power = mean_power(signal, &spectrum);
  double moment = 0.0;
  double sum = 0.0;
  for (std::size_t k = 1; k < power.size(); ++k) {  // without DC
    moment += static_cast<double>(k) * spectrum.bin_hz() * power[k];
    sum += power[k];
  }
  return sum > 0.0 ? moment / sum : std::numeric_limits<double>::quiet_NaN();
}

std::vector<double> third_octave_shape_db(mono_view signal) {
  power_spectrum spectrum(8192);  // a bin is half of the lowest band
  const auto power = mean_power(signal, &spectrum);
  const auto edges = third_octave_edges(50.0, 25);
  std::vector<double> shape;
  for (std::size_t band = 0; band + 1 < edges.size(); ++band) {
    shape.push_back(decibels(band_power(power, spectrum.bin_hz(), edges[band], edges[band + 1])));
  }
  const double strongest = *std::max_element(shape.begin(), shape.end());
  for (double& level : shape) level = std::max(level, strongest + shape_floor_db);
  const double mean = std::accumulate(shape.begin(), shape.end(), 0.0) / static_cast<double>(shape.size());
  for (double& level : shape) level -= mean;
  return shape;
}

std::vector<double> chroma_db(mono_view signal) {
  power_spectrum spectrum(16384);  // 2.7 Hz: semitones are apart from 100 Hz up
  const auto power = mean_power(signal, &spectrum);
  constexpr double c0_hz = 16.3516;  // with A4 at 440 Hz
  constexpr double lowest_hz = 100.0;
  constexpr double highest_hz = 2000.0;  // above, partials of one tone fall on all semitones
  std::array<double, 12> sums{};
  for (std::size_t k = 1; k < power.size(); ++k) {
    const double hz = static_cast<double>(k) * spectrum.bin_hz();
    if (hz < lowest_hz || hz > highest_hz) continue;
    sums[static_cast<std::size_t>(std::lround(12.0 * std::log2(hz / c0_hz))) % 12] += power[k];
  }
  const double strongest = *std::max_element(sums.begin(), sums.end());
  std::vector<double> chroma(sums.size(), chroma_floor_db);
  for (std::size_t note = 0; note < sums.size() && strongest > 0.0; ++note) {
    chroma[note] = std::max(chroma_floor_db, decibels(sums[note] / strongest));
  }
  return chroma;
}

std::vector<double> modulation_shape_db(mono_view signal) {
  // Levels over 5 ms, and the spectrum of these.
  constexpr std::size_t hop = rate_hz / 200;
  constexpr double level_rate_hz = static_cast<double>(rate_hz) / hop;
  std::vector<float> levels;
  for (std::size_t start = 0; start + hop <= signal.size(); start += hop) {
    double sum = 0.0;
    for (const float x : signal.subspan(start, hop)) sum += static_cast<double>(x) * static_cast<double>(x);
    levels.push_back(static_cast<float>(std::sqrt(sum / static_cast<double>(hop))));
  }
  std::vector<double> shape(6, modulation_floor_db);
  const auto count = static_cast<int32_t>(levels.size());
  const double mean = std::accumulate(levels.begin(), levels.end(), 0.0) / std::max(count, 1);
  if (count == 0 || mean <= 0.0) return shape;
  for (float& level : levels) level = static_cast<float>(static_cast<double>(level) / mean - 1.0);

  int32_t size = 8;
  while (size < count) size *= 2;
  power_spectrum spectrum(size, count);
  const auto& power = spectrum.of(levels, 0);
  const double bin_hz = spectrum.bin_hz(level_rate_hz);
  for (std::size_t band = 0; band < shape.size(); ++band) {
    const double centre_hz = std::exp2(static_cast<double>(band));
    // A sine spreads over 1.5 bins of its own length under a Hann window, and over more of the padded transform.
    const double spread = 1.5 * size / count;
    const double sum = band_power(power, bin_hz, centre_hz / std::numbers::sqrt2, centre_hz * std::numbers::sqrt2);
    shape[band] = std::max(modulation_floor_db, decibels(sum / spread));
  }
  return shape;
}

double distance_db(const fingerprint& a, const fingerprint& b) {
  const double colour = std::hypot(rms_difference(a.speech_shape_db, b.speech_shape_db),
                                   rms_difference(a.vowel_shape_db, b.vowel_shape_db)) *
                        std::numbers::sqrt2 / 2.0;
  const double pitches = 0.5 * rms_difference(a.chroma_db, b.chroma_db);
  const double movement = 0.5 * rms_difference(a.modulation_shape_db, b.modulation_shape_db);
  const double tails = 0.1 * std::hypot(a.pause_level_db - b.pause_level_db,
                                        a.pause_level_with_reverb_db - b.pause_level_with_reverb_db);
  const double width = 3.0 * (a.stereo_correlation - b.stereo_correlation);
  return std::sqrt(colour * colour + pitches * pitches + movement * movement + tails * tails + width * width);
}

}  // namespace measures
