// MIT License. The picture of a sound's spectrum over time.
#include "hosts/report/spectrogram.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <numbers>
#include <utility>

#include "hosts/measures/spectrum.h"
#include "hosts/picture/picture.h"

namespace {

constexpr double lowest_hz = 60.0;
constexpr double highest_hz = 16000.0;
constexpr double range_db = 60.0;

// 46 ms: the harmonics of a C3 are apart, and syllables as well. Padded, so that there is little to guess between bins.
constexpr int32_t span_samples = 2048;
constexpr int32_t transform_samples = 4096;

double hz_of_row(double row, const spectrogram_size& size) {
  return lowest_hz * std::pow(highest_hz / lowest_hz, row / size.height);
}

// The part of a spectrum that a row shows: the strongest bin, or between two bins, where rows are narrower, their
// powers in proportion.
struct row_source {
  std::size_t first;
  std::size_t last;  // the same for one between two bins
  double share;      // of the bin after the first
};

// From the bottom.
std::vector<row_source> sources_of_rows(const spectrogram_size& size) {
  constexpr double bin_hz = static_cast<double>(measures::rate_hz) / transform_samples;
  std::vector<row_source> rows;
  for (int row = 0; row < size.height; ++row) {
    const double low = hz_of_row(row, size) / bin_hz;
    const double high = hz_of_row(row + 1, size) / bin_hz;
    const double middle = 0.5 * (low + high);
    if (high - low > 1.0) {
      rows.push_back({static_cast<std::size_t>(low) + 1, static_cast<std::size_t>(high), 0.0});
    } else {
      const auto before = static_cast<std::size_t>(middle);
      rows.push_back({before, before, middle - static_cast<double>(before)});
    }
  }
  return rows;
}

double power_in(const row_source& row, const std::vector<double>& power) {
  if (row.first == row.last) return power[row.first] + row.share * (power[row.first + 1] - power[row.first]);
  return *std::max_element(power.begin() + static_cast<std::ptrdiff_t>(row.first),
                           power.begin() + static_cast<std::ptrdiff_t>(row.last) + 1);
}

// levels[row * width + column] in dB, rows from the bottom.
std::vector<double> levels_of(measures::mono_view signal, const spectrogram_size& size) {
  measures::power_spectrum spectrum(transform_samples, span_samples);
  const std::vector<row_source> rows = sources_of_rows(size);
  const auto width = static_cast<std::size_t>(size.width);
  std::vector<double> levels(width * rows.size());
  for (std::size_t column = 0; column < width; ++column) {
    const double centre = (static_cast<double>(column) + 0.5) / size.width * static_cast<double>(signal.size());
    const auto& power = spectrum.of(signal, static_cast<int64_t>(centre) - span_samples / 2);
    for (std::size_t row = 0; row < rows.size(); ++row) {
      levels[row * width + column] = measures::decibels(power_in(rows[row], power));
    }
  }
  return levels;
}

uint32_t pixel_of(double level) {
  const rgb colour = colour_of_level(level);
  const auto byte = [](double share) { return static_cast<uint32_t>(std::lround(255.0 * share)); };
  return byte(colour.red) << 16 | byte(colour.green) << 8 | byte(colour.blue);
}

// The colours of 256 levels, as pixels.
const std::array<uint32_t, 256>& shades() {
  static const auto all = [] {
    std::array<uint32_t, 256> colours{};
    for (std::size_t i = 0; i < colours.size(); ++i) colours[i] = pixel_of(static_cast<double>(i) / 255.0);
    return colours;
  }();
  return all;
}

}  // namespace

rgb colour_of_level(double level) {
  constexpr double darkest = 0.12;
  constexpr double lightest = 0.97;
  constexpr double first_hue_degrees = 280.0;  // blue
  constexpr double turn_degrees = 180.0;       // over magenta and orange to yellow, at 100
  const double lightness = darkest + (lightest - darkest) * level;
  // Screens have no strong dark and no strong light colours.
  const double chroma = 0.19 * std::sin(std::numbers::pi * std::pow(lightness, 0.8));
  const double hue = (first_hue_degrees + turn_degrees * level) * std::numbers::pi / 180.0;
  const double a = chroma * std::cos(hue);
  const double b = chroma * std::sin(hue);

  const double l = std::pow(lightness + 0.3963377774 * a + 0.2158037573 * b, 3.0);
  const double m = std::pow(lightness - 0.1055613458 * a - 0.0638541728 * b, 3.0);
  const double s = std::pow(lightness - 0.0894841775 * a - 1.2914855480 * b, 3.0);
  const auto encoded = [](double linear) {  // IEC 61966-2-1
    const double share = std::clamp(linear, 0.0, 1.0);
    return share <= 0.0031308 ? 12.92 * share : 1.055 * std::pow(share, 1.0 / 2.4) - 0.055;
  };
  return {encoded(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s),
          encoded(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s),
          encoded(-0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s)};
}

double row_of_hz(double hz, const spectrogram_size& size) {
  return size.height * std::log(hz / lowest_hz) / std::log(highest_hz / lowest_hz);
}

std::vector<axis_mark> frequency_marks() {
  constexpr spectrogram_size size;
  std::vector<axis_mark> marks;
  for (const auto& [hz, label] : {std::pair{100.0, "100 Hz"}, {400.0, "400"}, {1600.0, "1600"}, {6400.0, "6400"}}) {
    marks.push_back({row_of_hz(hz, size) / size.height, label});
  }
  return marks;
}

std::vector<axis_mark> time_marks(double seconds) {
  constexpr int most = 8;
  constexpr std::array<int, 9> steps = {1, 2, 5, 10, 30, 60, 120, 300, 600};
  const auto* const fits = std::ranges::find_if(steps, [&](int step) { return seconds / step <= most; });
  const int step = fits != steps.end() ? *fits : 3600;
  std::vector<axis_mark> marks;
  for (int at = step; at < 0.95 * seconds; at += step) {
    char label[32];
    if (seconds < 60.0) {
      std::snprintf(label, sizeof label, "%d s", at);
    } else {
      std::snprintf(label, sizeof label, "%d:%02d", at / 60, at % 60);
    }
    marks.push_back({at / seconds, label});
  }
  return marks;
}

void write_spectrogram(measures::mono_view signal, const std::string& path, const spectrogram_size& size) {
  const std::vector<double> levels = levels_of(signal, size);
  const double most = *std::max_element(levels.begin(), levels.end());
  picture shown{size.width, size.height};
  shown.pixels.reserve(levels.size());
  const auto width = static_cast<std::size_t>(size.width);
  for (std::size_t row = levels.size() / width; row-- > 0;) {
    for (std::size_t column = 0; column < width; ++column) {
      const double level = std::clamp(1.0 + (levels[row * width + column] - most) / range_db, 0.0, 1.0);
      shown.pixels.push_back(shades()[static_cast<std::size_t>(std::lround(255.0 * level))]);
    }
  }
  write_png(path, shown);
}
