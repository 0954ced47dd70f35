// MIT License. The picture of a sound's spectrum over time.
#include "tools/soundcheck/spectrogram.h"

#include <cairo.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>

#include "hosts/effect/text.h"
#include "tools/soundcheck/measures/spectrum.h"

namespace {

constexpr double lowest_hz = 60.0;
constexpr double highest_hz = 16000.0;
constexpr double range_db = 60.0;

// 46 ms: the harmonics of a C3 are apart, and syllables as well. Padded, so that the low rows have a bin each.
constexpr int32_t span_samples = 2048;
constexpr int32_t transform_samples = 8192;

double hz_of_row(double row, const spectrogram_size& size) {
  return lowest_hz * std::pow(highest_hz / lowest_hz, row / size.height);
}

// The strongest power from `low_hz` to `high_hz`, and at least that at the bin nearest to their middle.
double strongest(const std::vector<double>& power, double bin_hz, double low_hz, double high_hz) {
  const auto bin = [&](double hz) { return std::min(power.size() - 1, static_cast<std::size_t>(hz / bin_hz)); };
  double most = power[bin(0.5 * (low_hz + high_hz) + 0.5 * bin_hz)];
  for (std::size_t k = bin(low_hz) + 1; k <= bin(high_hz); ++k) most = std::max(most, power[k]);
  return most;
}

// levels[row * width + column] in dB, rows from the bottom.
std::vector<double> levels_of(measures::mono_view signal, const spectrogram_size& size) {
  measures::power_spectrum spectrum(transform_samples, span_samples);
  std::vector<double> levels(static_cast<std::size_t>(size.width * size.height));
  for (int column = 0; column < size.width; ++column) {
    const double centre = (column + 0.5) / size.width * static_cast<double>(signal.size());
    const auto& power = spectrum.of(signal, static_cast<int64_t>(centre) - span_samples / 2);
    for (int row = 0; row < size.height; ++row) {
      const double most = strongest(power, spectrum.bin_hz(), hz_of_row(row, size), hz_of_row(row + 1, size));
      levels[static_cast<std::size_t>(row * size.width + column)] = measures::decibels(most);
    }
  }
  return levels;
}

uint32_t pixel_of(double level) {
  const rgb colour = colour_of_level(level);
  const auto byte = [](double share) { return static_cast<uint32_t>(std::lround(255.0 * share)); };
  return byte(colour.red) << 16 | byte(colour.green) << 8 | byte(colour.blue);
}

struct surface_closer {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct painter_closer {
  void operator()(cairo_t* painter) const { cairo_destroy(painter); }
};

void paint_levels(const std::vector<double>& levels, const spectrogram_size& size, cairo_surface_t* surface) {
  const double most = *std::max_element(levels.begin(), levels.end());
  cairo_surface_flush(surface);
  unsigned char* const bytes = cairo_image_surface_get_data(surface);
  const int stride = cairo_image_surface_get_stride(surface);
  for (int row = 0; row < size.height; ++row) {
    auto* const pixels = reinterpret_cast<uint32_t*>(bytes + (size.height - 1 - row) * stride);
    for (int column = 0; column < size.width; ++column) {
      const double level = levels[static_cast<std::size_t>(row * size.width + column)];
      pixels[column] = pixel_of(std::clamp(1.0 + (level - most) / range_db, 0.0, 1.0));
    }
  }
  cairo_surface_mark_dirty(surface);
}

// White with a dark seam, to be read on any colour.
void paint_text(const char* text, double x, double y, cairo_t* painter) {
  cairo_move_to(painter, x, y);
  cairo_text_path(painter, text);
  cairo_set_source_rgba(painter, 0, 0, 0, 0.7);
  cairo_set_line_width(painter, 4.0);
  cairo_stroke_preserve(painter);
  cairo_set_source_rgb(painter, 1, 1, 1);
  cairo_fill(painter);
}

void paint_line(double x1, double y1, double x2, double y2, double alpha, cairo_t* painter) {
  cairo_set_source_rgba(painter, 1, 1, 1, alpha);
  cairo_set_line_width(painter, 1.0);
  cairo_move_to(painter, x1, y1);
  cairo_line_to(painter, x2, y2);
  cairo_stroke(painter);
}

// Labels are inside the picture, so that it needs no margin and fits light and dark pages.
void paint_axes(double seconds, const spectrogram_size& size, cairo_t* painter) {
  struct mark {
    double hz;
    const char* label;
  };
  constexpr std::array<mark, 4> marks = {{{100, "100 Hz"}, {400, "400"}, {1600, "1600"}, {6400, "6400"}}};
  cairo_select_font_face(painter, "Liberation Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(painter, 17.0);
  for (const auto& [hz, label] : marks) {
    const double y = std::floor(size.height - row_of_hz(hz, size)) + 0.5;
    paint_line(0, y, size.width, y, 0.16, painter);
    paint_text(label, 7, y - 4, painter);
  }
  for (int second = 1; second < seconds; ++second) {
    const double x = std::floor(second / seconds * size.width) + 0.5;
    paint_line(x, size.height, x, size.height - 8, 0.85, painter);
    paint_text((std::to_string(second) + " s").c_str(), x + 4, size.height - 6, painter);
  }
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

void write_spectrogram(measures::mono_view signal, const std::string& path, const spectrogram_size& size) {
  const std::unique_ptr<cairo_surface_t, surface_closer> surface(
      cairo_image_surface_create(CAIRO_FORMAT_RGB24, size.width, size.height));
  if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) throw failure("a picture needs more memory");
  paint_levels(levels_of(signal, size), size, surface.get());
  const std::unique_ptr<cairo_t, painter_closer> painter(cairo_create(surface.get()));
  paint_axes(static_cast<double>(signal.size()) / measures::rate_hz, size, painter.get());
  const cairo_status_t status = cairo_surface_write_to_png(surface.get(), path.c_str());
  if (status != CAIRO_STATUS_SUCCESS) {
    throw failure("picture '" + path + "' cannot be written: " + cairo_status_to_string(status));
  }
}
