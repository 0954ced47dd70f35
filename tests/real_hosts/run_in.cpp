// MIT License. How long an effect had been running before it got a voice, from its recording.
#include "tests/real_hosts/run_in.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <cstddef>
#include <numbers>

#include "dsp/fft.h"

namespace {

using spectrum = std::vector<std::complex<float>>;

constexpr double rate_hz = 44100;
constexpr int64_t first_run_in = shortest_run_in;  // of the take that others are compared with

// Partials in this range are strong in a voice.
constexpr double lowest_hz = 80;
constexpr double highest_hz = 5000;
constexpr std::size_t most_partials = 48;
constexpr double nearest_partials_hz = 6;

// A phase that is further from what half the run-in makes of it, in cycles, isn't that of a single partial.
constexpr double greatest_surprise = 0.12;

constexpr std::size_t candidates = 12;

spectrum spectrum_of(std::span<const float> signal) {
  int32_t log2_size = 0;
  const auto size = std::bit_ceil(signal.size());
  std::vector<float> table(size / 4 + 1);
  fft_cos_table_init(&log2_size, static_cast<int32_t>(size), table.data());
  spectrum bins(size);
  for (std::size_t i = 0; i < signal.size(); ++i) {
    const double turn = 2 * std::numbers::pi * static_cast<double>(i) / static_cast<double>(signal.size());
    bins[i] = signal[i] * static_cast<float>(0.5 - 0.5 * std::cos(turn));
  }
  fft_forward(reinterpret_cast<float*>(bins.data()), log2_size, table.data());
  return bins;
}

struct partial {
  std::size_t bin;
  double weight;
  double cycles_per_sample;  // as far as it is known
  bool is_plain;             // its phase grows steadily
};

double hz_of(std::size_t bin, const spectrum& bins) {
  return static_cast<double>(bin) * rate_hz / static_cast<double>(bins.size());
}

std::vector<partial> strongest_partials(const spectrum& bins) {
  std::vector<partial> found;
  for (std::size_t bin = 1; hz_of(bin + 1, bins) < highest_hz; ++bin) {
    if (hz_of(bin, bins) < lowest_hz) continue;
    const float level = std::abs(bins[bin]);
    if (level < std::abs(bins[bin - 1]) || level < std::abs(bins[bin + 1])) continue;
    found.push_back({bin, std::sqrt(static_cast<double>(level)), hz_of(bin, bins) / rate_hz, true});
  }
  std::sort(found.begin(), found.end(), [](const partial& a, const partial& b) { return a.weight > b.weight; });
  std::vector<partial> kept;
  for (const partial& each : found) {
    const bool is_apart = std::all_of(kept.begin(), kept.end(), [&](const partial& other) {
      return std::abs(each.cycles_per_sample - other.cycles_per_sample) * rate_hz > nearest_partials_hz;
    });
    if (is_apart) kept.push_back(each);
    if (kept.size() == most_partials) break;
  }
  return kept;
}

// By how much a partial of `later` is ahead, in cycles.
double advance(const partial& of, const spectrum& earlier, const spectrum& later) {
  return std::arg(later[of.bin] * std::conj(earlier[of.bin])) / (2 * std::numbers::pi);
}

// Refines the partials' frequencies by takes with longer and longer run-ins.
void measure_growth(const spectrum& first, std::size_t length, const take_function& take,
                    std::vector<partial>* partials) {
  for (int64_t more = 1; more <= longest_run_in; more *= 2) {
    const auto longer = take(first_run_in + more);
    const spectrum later = spectrum_of(std::span(longer).first(length));
    for (partial& each : *partials) {
      const double expected = each.cycles_per_sample * static_cast<double>(more);
      const double measured = advance(each, first, later);
      const double surprise = std::remainder(measured - expected, 1.0);
      each.is_plain = each.is_plain && std::abs(surprise) < greatest_surprise;
      each.cycles_per_sample = (expected + surprise) / static_cast<double>(more);
    }
  }
  std::erase_if(*partials, [](const partial& each) { return !each.is_plain; });
}

struct candidate {
  int64_t run_in;
  double score;
};

}  // namespace

std::vector<int64_t> likely_run_ins(std::span<const float> recording, const take_function& take) {
  const auto first_take = take(first_run_in);
  const std::size_t length = std::min(recording.size(), first_take.size());
  const spectrum first = spectrum_of(std::span(first_take).first(length));
  auto partials = strongest_partials(first);
  measure_growth(first, length, take, &partials);

  const spectrum recorded = spectrum_of(recording.first(length));
  struct turning {
    std::complex<double> value;  // the real part is 1 where the phases agree
    std::complex<double> step;
  };
  std::vector<turning> turns;
  for (const partial& each : partials) {
    const double start = -2 * std::numbers::pi * advance(each, first, recorded);
    turns.push_back({std::polar(each.weight, start), std::polar(1.0, 2 * std::numbers::pi * each.cycles_per_sample)});
  }
  std::vector<candidate> best;
  for (int64_t run_in = first_run_in; run_in <= longest_run_in; ++run_in) {
    double score = 0;
    for (turning& each : turns) {
      score += each.value.real();
      each.value *= each.step;
    }
    best.push_back({run_in, score});
  }
  const auto wanted = best.begin() + std::min<std::ptrdiff_t>(candidates, std::ssize(best));
  std::partial_sort(best.begin(), wanted, best.end(),
                    [](const candidate& a, const candidate& b) { return a.score > b.score; });
  std::vector<int64_t> result;
  std::transform(best.begin(), wanted, std::back_inserter(result), [](const candidate& each) { return each.run_in; });
  return result;
}
