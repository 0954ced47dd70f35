// MIT License. Figures of a sample loop, as measured on its source and its bytes.
#include "tools/loop_report.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "tools/delta_code.h"
#include "tools/loop_formats.h"

namespace {

double power(const std::vector<double>& signal, size_t first, size_t count) {
  double sum = 0.0;
  for (size_t i = first; i < first + count; ++i) sum += signal[i] * signal[i];
  return sum / static_cast<double>(count);
}

// The decoded loop in 16-bit units, as in the oscillator's table.
std::vector<double> table_of(const loop_format& format, const std::vector<float>& decoded, bool mirrored) {
  std::vector<double> table;
  table.reserve(static_cast<size_t>(format.period) + 1);
  for (const float entry : decoded) table.push_back(entry * 16384.0);
  if (mirrored) {
    while (table.size() <= static_cast<size_t>(format.period)) {
      table.push_back(table[static_cast<size_t>(format.period) - table.size()]);
    }
  }
  return table;
}

double ripple_db(const std::vector<double>& signal) {
  constexpr size_t stretch = 2205;
  double loudest = 0.0;
  double softest = 1e30;
  for (size_t at = 0; at + stretch <= signal.size(); at += stretch / 4) {
    const double here = power(signal, at, stretch);
    loudest = std::max(loudest, here);
    softest = std::min(softest, here);
  }
  return 10.0 * std::log10(loudest / softest);
}

double error_db(const std::vector<double>& source, const std::vector<float>& decoded) {
  std::vector<double> error;
  error.reserve(source.size());
  for (size_t i = 0; i < source.size(); ++i) error.push_back(decoded[i] * 16384.0 - source[i]);
  return 10.0 * std::log10(power(error, 0, error.size()) / power(source, 0, source.size()));
}

// Output of an oscillator that plays the root key, and the first samples after its wraps.
struct playback {
  std::vector<double> samples;
  std::vector<size_t> wraps;
};

playback play(const loop_format& format, const std::vector<double>& table) {
  constexpr size_t measured_wraps = 8;
  playback result;
  float phase = 0.0F;
  while (result.wraps.size() < measured_wraps) {
    const auto entry = static_cast<size_t>(phase);
    const double after = phase - static_cast<double>(entry);
    const double next = entry + 1 < table.size() ? table[entry + 1] : 0.0;
    result.samples.push_back(table[entry] + (next - table[entry]) * after);
    double advanced = static_cast<double>(phase) + root_step(format);
    if (advanced > format.loop_length) {
      advanced -= format.loop_length;
      result.wraps.push_back(result.samples.size());
    }
    phase = static_cast<float>(advanced);
  }
  return result;
}

constexpr size_t window = 256;

// Energy above 17 kHz, where no loop has partials, in a Hann window about sample `centre`.
double high_energy(const std::vector<double>& samples, size_t centre) {
  constexpr size_t first_bin = 17000 * window / 44100;
  const double turn = 2.0 * std::acos(-1.0) / window;
  double energy = 0.0;
  for (size_t bin = first_bin; bin < window / 2; ++bin) {
    std::complex<double> sum;
    for (size_t i = 0; i < window; ++i) {
      const double hann = 0.5 - 0.5 * std::cos(turn * static_cast<double>(i));
      sum += samples[centre - window / 2 + i] * std::polar(hann, -turn * static_cast<double>(bin * i % window));
    }
    energy += std::norm(sum);
  }
  return energy;
}

double wrap_excess_db(const playback& played) {
  double at_wraps = 0.0;
  double elsewhere = 0.0;
  for (size_t k = 0; k + 1 < played.wraps.size(); ++k) {
    at_wraps = std::max(at_wraps, high_energy(played.samples, played.wraps[k]));
    const size_t length = played.wraps[k + 1] - played.wraps[k];
    for (size_t part = 1; part < 16; ++part) {
      elsewhere = std::max(elsewhere, high_energy(played.samples, played.wraps[k] + length * part / 16));
    }
  }
  return 10.0 * std::log10(at_wraps / elsewhere);
}

double wrap_step(const playback& played) {
  double largest = 0.0;
  for (const size_t at : played.wraps) {
    if (at < played.samples.size()) largest = std::max(largest, std::abs(played.samples[at] - played.samples[at - 1]));
  }
  return largest;
}

}  // namespace

loop_figures measure_loop(int32_t loop, const made_loop& made) {
  const loop_format format = format_of_loop(loop);
  const std::vector<double> source(made.source.begin(), made.source.end());
  const std::vector<float> decoded = delta_decode(made.bytes, format.delta_scale());
  const playback played = play(format, table_of(format, decoded, made.sound.mirrored));

  loop_figures figures{};
  figures.cents = centred_cents(made.sound, made.tilt, 1 << 20);
  figures.first_cents = centred_cents(made.sound, made.tilt, 1);
  for (const int16_t sample : made.source) figures.source_peak = std::max(figures.source_peak, std::abs(sample));
  for (size_t i = 1; i < made.source.size(); ++i) {
    figures.source_step = std::max(figures.source_step, std::abs(made.source[i] - made.source[i - 1]));
  }
  figures.crest_db = 20.0 * std::log10(figures.source_peak / std::sqrt(power(source, 0, source.size())));
  figures.ripple_db = ripple_db(source);
  for (const float entry : decoded) figures.decoded_peak = std::max(figures.decoded_peak, std::abs(double{entry}));
  figures.error_db = error_db(source, decoded);
  figures.wrap_step = wrap_step(played);
  figures.wrap_excess_db = wrap_excess_db(played);
  return figures;
}

std::string report_heading() {
  return "| wave | instrument | bytes | loop length | root key | cycles | cents off | 1st harmonic | source peak | "
         "largest step | delta scale | decoded peak | coding error dB | crest dB | ripple dB | wrap step | "
         "wrap excess dB |\n"
         "|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|---|\n";
}

std::string report_row(int32_t loop, const made_loop& made) {
  const loop_format format = format_of_loop(loop);
  const loop_figures f = measure_loop(loop, made);
  std::array<char, 300> row{};
  std::snprintf(
      row.data(), row.size(),
      "| %d | %s | %d | %d | %d | %.2f | %+.1f | %+.1f | %d | %d | %d/127 = %.4f | %.4f | %.1f | %.1f | %.1f | "
      "%.0f | %+.1f |\n",
      loop, made.instrument, format.source_length, format.loop_length, format.root_key, root_cycles(format), f.cents,
      f.first_cents, f.source_peak, f.source_step, format.largest_step, format.delta_scale(), f.decoded_peak,
      f.error_db, f.crest_db, f.ripple_db, f.wrap_step, f.wrap_excess_db);
  return row.data();
}
