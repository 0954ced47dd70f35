// MIT License. ESTOI: how much of a voice can be understood in a processed copy of it.
#include "hosts/measures/estoi.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "hosts/measures/resampled.h"
#include "hosts/measures/spectrum.h"

namespace measures {

namespace {

// The constants of the paper.
constexpr double rate_of_measure_hz = 10000.0;
constexpr std::size_t frame_samples = 256;  // 25.6 ms
constexpr std::size_t hop_samples = frame_samples / 2;
constexpr int32_t transform_samples = 512;
constexpr int band_count = 15;
constexpr double lowest_centre_hz = 150.0;
constexpr std::size_t segment_frames = 30;  // 384 ms
constexpr double dynamic_range_db = 40.0;   // of the frames that count as speech

// The band levels of a whole signal: levels[band][frame].
using band_levels = std::vector<std::vector<double>>;

band_levels levels_of(const std::vector<float>& signal) {
  power_spectrum spectrum(transform_samples, frame_samples);
  const double bin_hz = spectrum.bin_hz(rate_of_measure_hz);
  std::vector<double> edges = third_octave_edges(lowest_centre_hz, band_count);
  // Bands begin and end at the bins nearest to their edges.
  for (double& edge : edges) edge = std::round(edge / bin_hz) * bin_hz;

  band_levels levels(band_count);
  for (std::size_t start = 0; start + frame_samples <= signal.size(); start += hop_samples) {
    const auto& power = spectrum.of(signal, static_cast<int64_t>(start));
    for (std::size_t band = 0; band < band_count; ++band) {
      levels[band].push_back(std::sqrt(band_power(power, bin_hz, edges[band], edges[band + 1])));
    }
  }
  return levels;
}

estoi_parts::segment segment_at(const band_levels& levels, std::size_t first) {
  estoi_parts::segment part{levels.size(), segment_frames, {}};
  for (const auto& band : levels) {
    const auto begin = band.begin() + static_cast<std::ptrdiff_t>(first);
    part.values.insert(part.values.end(), begin, begin + segment_frames);
  }
  return part;
}

// Takes the mean off `count` values that are `stride` apart and scales them to a norm of 1. What remains of a constant
// by rounding isn't a pattern: a norm of up to `least` becomes 0.
void normalise_line(double* values, std::size_t count, std::size_t stride, double least) {
  double mean = 0.0;
  for (std::size_t i = 0; i < count; ++i) mean += values[i * stride] / static_cast<double>(count);
  double sum_of_squares = 0.0;
  for (std::size_t i = 0; i < count; ++i) {
    values[i * stride] -= mean;
    sum_of_squares += values[i * stride] * values[i * stride];
  }
  const double norm = std::sqrt(sum_of_squares);
  const double scale = norm > least ? 1.0 / norm : 0.0;
  for (std::size_t i = 0; i < count; ++i) values[i * stride] *= scale;
}

}  // namespace

namespace estoi_parts {

void normalise(segment* levels) {
  constexpr double rounding = 1e-12;
  for (std::size_t band = 0; band < levels->bands; ++band) {
    double* const row = levels->values.data() + band * levels->frames;
    normalise_line(row, levels->frames, 1, rounding * *std::max_element(row, row + levels->frames));
  }
  for (std::size_t frame = 0; frame < levels->frames; ++frame) {
    normalise_line(levels->values.data() + frame, levels->bands, levels->frames, rounding);
  }
}

double mean_product(const segment& a, const segment& b) {
  double sum = 0.0;
  for (std::size_t i = 0; i < a.values.size(); ++i) sum += a.values[i] * b.values[i];
  return sum / static_cast<double>(a.frames);
}

void remove_silence(std::vector<float>* clean, std::vector<float>* processed) {
  std::vector<double> window(frame_samples);
  for (std::size_t i = 0; i < frame_samples; ++i) {
    window[i] = 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * (static_cast<double>(i) + 1.0) / (frame_samples + 1));
  }
  std::vector<double> energies;
  for (std::size_t start = 0; start + frame_samples <= clean->size(); start += hop_samples) {
    double energy = 0.0;
    for (std::size_t i = 0; i < frame_samples; ++i) {
      const double x = window[i] * static_cast<double>((*clean)[start + i]);
      energy += x * x;
    }
    energies.push_back(energy);
  }
  const double loudest = energies.empty() ? 0.0 : *std::max_element(energies.begin(), energies.end());
  const double least = loudest * std::pow(10.0, -0.1 * dynamic_range_db);

  std::vector<float> kept_clean(clean->size(), 0.0F);
  std::vector<float> kept_processed(clean->size(), 0.0F);
  std::size_t end = 0;
  std::size_t target = 0;
  for (std::size_t frame = 0; frame < energies.size(); ++frame) {
    if (!(energies[frame] > least)) continue;
    for (std::size_t i = 0; i < frame_samples; ++i) {
      const auto weight = static_cast<float>(window[i]);
      kept_clean[target + i] += weight * (*clean)[frame * hop_samples + i];
      kept_processed[target + i] += weight * (*processed)[frame * hop_samples + i];
    }
    end = target + frame_samples;
    target += hop_samples;
  }
  kept_clean.resize(end);
  kept_processed.resize(end);
  *clean = std::move(kept_clean);
  *processed = std::move(kept_processed);
}

}  // namespace estoi_parts

double estoi(mono_view clean, mono_view processed) {
  const std::size_t count = std::min(clean.size(), processed.size());
  std::vector<float> voice = resampled(clean.first(count), rate_of_measure_hz);
  std::vector<float> copy = resampled(processed.first(count), rate_of_measure_hz);
  estoi_parts::remove_silence(&voice, &copy);
  const band_levels voice_levels = levels_of(voice);
  const band_levels copy_levels = levels_of(copy);
  const std::size_t frames = voice_levels.front().size();
  if (frames < segment_frames) return std::numeric_limits<double>::quiet_NaN();

  double sum = 0.0;
  const std::size_t segments = frames - segment_frames + 1;
  for (std::size_t first = 0; first < segments; ++first) {
    auto of_voice = segment_at(voice_levels, first);
    auto of_copy = segment_at(copy_levels, first);
    estoi_parts::normalise(&of_voice);
    estoi_parts::normalise(&of_copy);
    sum += estoi_parts::mean_product(of_voice, of_copy);
  }
  return sum / static_cast<double>(segments);
}

}  // namespace measures
