// MIT License. A periodic tone as a list of partials, and its way to a 16-bit source signal.
#include "tools/loop_tone.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdlib>
#include <numeric>
#include <utility>

namespace {

using complex = std::complex<double>;

const double turn = 2.0 * std::acos(-1.0);
constexpr double full_scale = 32767.0;
constexpr double tilt_steps = 65536.0;  // per unit of tilt

int32_t on_phase_grid(double radians) {
  const auto phase = static_cast<int32_t>(std::lround(radians / turn * phases_per_turn)) % phases_per_turn;
  return phase < 0 ? phase + phases_per_turn : phase;
}

double tilted_level(const partial& partial, const tone& tone, double tilt) {
  return partial.level * std::pow(partial.cycles / tone.root_cycles, -tilt);
}

// Adds partials to a signal. All angles come from one turn of whole entries, so that no error adds up along the loop.
class partial_adder {
 public:
  explicit partial_adder(int32_t period) : turn_(static_cast<size_t>(period)) {
    for (size_t i = 0; i < turn_.size(); ++i) turn_[i] = std::polar(1.0, turn * static_cast<double>(i) / period);
  }

  // `level` may be negative, which removes the partial. A block's angles are those of the first block turned by the
  // block's first: few look-ups and a plain inner loop.
  void add(const partial& partial, double level, std::vector<double>* signal) const {
    constexpr size_t block_samples = 128;
    const auto cycles = static_cast<size_t>(partial.cycles);
    std::array<double, block_samples> cosine{};
    std::array<double, block_samples> sine{};
    for (size_t i = 0; i < block_samples; ++i) {
      cosine[i] = turn_[cycles * i % turn_.size()].real();
      sine[i] = turn_[cycles * i % turn_.size()].imag();
    }
    const complex start = level * std::polar(1.0, turn * partial.phase / phases_per_turn);
    for (size_t first = 0; first < signal->size(); first += block_samples) {
      const complex at = start * turn_[cycles * first % turn_.size()];
      const size_t count = std::min(block_samples, signal->size() - first);
      double* out = signal->data() + first;
      for (size_t i = 0; i < count; ++i) out[i] += at.real() * cosine[i] - at.imag() * sine[i];
    }
  }

 private:
  std::vector<complex> turn_;
};

double peak(const std::vector<double>& signal) {
  double largest = 0.0;
  for (const double value : signal) largest = std::max(largest, std::abs(value));
  return largest;
}

// Largest step between neighbours, the last and the first included where the signal is one whole period.
double largest_step(const std::vector<double>& signal, bool closed) {
  double largest = closed ? std::abs(signal.front() - signal.back()) : 0.0;
  for (size_t i = 1; i < signal.size(); ++i) largest = std::max(largest, std::abs(signal[i] - signal[i - 1]));
  return largest;
}

double crest(const std::vector<double>& signal) {
  const double energy = std::inner_product(signal.begin(), signal.end(), signal.begin(), 0.0);
  return peak(signal) / std::sqrt(energy / static_cast<double>(signal.size()));
}

// Entries that determine the signal: a period, or half of one up to the mirror.
int32_t distinct_entries(const tone& tone) {
  return tone.mirrored ? tone.period / 2 + 1 : tone.period;
}

// In place, e^(-j); `bins` is a power of two long. Radix 2, decimation in time.
void transform(std::vector<complex>* bins, const std::vector<complex>& roots) {
  const size_t size = bins->size();
  for (size_t i = 1, j = 0; i < size; ++i) {
    size_t bit = size >> 1;
    for (; j & bit; bit >>= 1) j ^= bit;
    j ^= bit;
    if (i < j) std::swap((*bins)[i], (*bins)[j]);
  }
  for (size_t half = 1; half < size; half *= 2) {
    for (size_t start = 0; start < size; start += 2 * half) {
      for (size_t k = 0; k < half; ++k) {
        const complex& root = roots[k * (size / (2 * half))];
        complex& upper = (*bins)[start + k];
        complex& lower = (*bins)[start + k + half];
        const complex turned(lower.real() * root.real() - lower.imag() * root.imag(),
                             lower.real() * root.imag() + lower.imag() * root.real());
        lower = upper - turned;
        upper += turned;
      }
    }
  }
}

// The tone's signal and its steps on a grid of a power of two per common period, where partials are bins.
class peak_cutter {
 public:
  struct crests {
    double signal;
    double steps;
  };

  peak_cutter(const tone& tone, double tilt) {
    int32_t common = tone.period;
    int32_t highest = 0;
    for (const partial& partial : tone.partials) {
      common = std::gcd(common, partial.cycles);
      highest = std::max(highest, partial.cycles);
    }
    // Two and a half points in the shortest period find the peaks well enough, since the sums of many differ.
    size_t size = 1;
    while (size < static_cast<size_t>(5 * (highest / common) / 2)) size *= 2;
    bins_.resize(size);
    for (size_t i = 0; i < size / 2; ++i) {
      roots_.push_back(std::polar(1.0, -turn * static_cast<double>(i) / static_cast<double>(size)));
    }
    for (const partial& partial : tone.partials) {
      const double half_step = 0.5 * turn * partial.cycles / tone.period;
      lines_.push_back({static_cast<size_t>(partial.cycles / common), tilted_level(partial, tone, tilt),
                        std::polar(2.0 * std::sin(half_step), half_step + 0.25 * turn),
                        turn * partial.phase / phases_per_turn});
    }
  }

  // Renders the signal as real and its steps as imaginary part, and measures both.
  crests render() {
    std::fill(bins_.begin(), bins_.end(), complex());
    const complex j(0.0, 1.0);
    for (const spectral_line& line : lines_) {
      const complex signal = std::polar(line.level, line.phase);
      const complex steps = signal * line.step;
      bins_[line.bin] += std::conj(signal) + j * std::conj(steps);
      bins_[bins_.size() - line.bin] += signal + j * steps;
    }
    transform(&bins_, roots_);
    double signal_energy = 0.0;
    double steps_energy = 0.0;
    signal_peak_ = steps_peak_ = 0.0;
    for (const complex& value : bins_) {
      signal_peak_ = std::max(signal_peak_, std::abs(value.real()));
      steps_peak_ = std::max(steps_peak_, std::abs(value.imag()));
      signal_energy += value.real() * value.real();
      steps_energy += value.imag() * value.imag();
    }
    const auto count = static_cast<double>(bins_.size());
    return {signal_peak_ / std::sqrt(signal_energy / count), steps_peak_ / std::sqrt(steps_energy / count)};
  }

  // Cut what `render` left at `limit` of the peak; the partials take the phases that the cut signal or steps have.
  void cut_signal(double limit) {
    const double bound = limit * signal_peak_;
    for (complex& value : bins_) value = std::clamp(value.real(), -bound, bound);
    transform(&bins_, roots_);
    for (spectral_line& line : lines_) line.phase = std::arg(bins_[line.bin]);
  }
  void cut_steps(double limit) {
    const double bound = limit * steps_peak_;
    for (complex& value : bins_) value = std::clamp(value.imag(), -bound, bound);
    transform(&bins_, roots_);
    for (spectral_line& line : lines_) line.phase = std::arg(bins_[line.bin] / line.step);
  }

  void keep_phases(std::vector<double>* phases) const {
    phases->clear();
    for (const spectral_line& line : lines_) phases->push_back(line.phase);
  }

 private:
  struct spectral_line {
    size_t bin;
    double level;
    complex step;  // the partial's steps between neighbouring entries, relative to the partial
    double phase;  // radians
  };

  std::vector<complex> bins_, roots_;
  std::vector<spectral_line> lines_;
  double signal_peak_ = 0.0;
  double steps_peak_ = 0.0;
};

// Moves the tone's start to the entry that is nearest to zero.
void start_near_zero(double tilt, tone* tone) {
  const std::vector<double> signal = tone_signal(*tone, tilt, tone->period);
  const auto nearest =
      std::min_element(signal.begin(), signal.end(), [](double a, double b) { return std::abs(a) < std::abs(b); });
  const auto shift = static_cast<int64_t>(nearest - signal.begin());
  for (partial& partial : tone->partials) {
    const double turns = static_cast<double>(shift * partial.cycles % tone->period) / tone->period;
    partial.phase = on_phase_grid(turn * (turns + static_cast<double>(partial.phase) / phases_per_turn));
  }
}

// Steps count for more than the signal: the lower their peaks, the more harmonics go into the largest step.
void search_phases(double tilt, tone* tone) {
  constexpr int cuts = 150;
  constexpr double weight_of_steps = 3.0;
  peak_cutter cutter(*tone, tilt);
  std::vector<double> best;
  double lowest = 1e9;
  for (int i = 0; i < cuts; ++i) {
    const peak_cutter::crests crests = cutter.render();
    const double score = crests.signal + weight_of_steps * crests.steps;
    if (score < lowest) {
      lowest = score;
      cutter.keep_phases(&best);
    }
    const double limit = 0.75 + 0.2 * i / cuts;
    if (i % 4 == 0) {
      cutter.cut_signal(limit);
    } else {
      cutter.cut_steps(limit);
    }
  }
  for (size_t i = 0; i < best.size(); ++i) tone->partials[i].phase = on_phase_grid(best[i]);
  start_near_zero(tilt, tone);
}

// Low when signal and steps have low peaks and the mirror finds the signal near zero and flat.
double mirrored_score(const std::vector<double>& signal) {
  const double largest = peak(signal);
  const double start = std::max(0.0, std::abs(signal[0]) / largest - 0.02);
  const double curve = std::abs(signal[1] - signal[0]) / largest;
  return crest(signal) + 100.0 * largest_step(signal, false) / largest + 20.0 * start + 200.0 * curve;
}

void search_signs(double tilt, tone* tone) {
  constexpr int passes = 6;
  const partial_adder adder(tone->period);
  std::vector<double> signal = tone_signal(*tone, tilt, distinct_entries(*tone));
  double lowest = mirrored_score(signal);
  for (int pass = 0; pass < passes; ++pass) {
    for (partial& partial : tone->partials) {
      std::vector<double> flipped = signal;
      adder.add(partial, -2.0 * tilted_level(partial, *tone, tilt), &flipped);
      const double score = mirrored_score(flipped);
      if (score >= lowest) continue;
      lowest = score;
      signal.swap(flipped);
      partial.phase = phases_per_turn / 2 - partial.phase;
    }
  }
}

// Moves single samples until no step exceeds `wanted` and one reaches it.
void trim_steps(int32_t wanted, bool closed, std::vector<int16_t>* samples) {
  const size_t count = samples->size();
  if (count == 0) return;
  const auto step_after = [&](size_t i) { return (*samples)[(i + 1) % count] - (*samples)[i]; };
  const size_t steps = closed ? count : count - 1;
  size_t steepest = 0;
  for (size_t i = 0; i < steps; ++i) {
    const int32_t excess = std::abs(step_after(i)) - wanted;
    if (excess > 0) {
      int16_t& next = (*samples)[(i + 1) % count];
      next = static_cast<int16_t>(next - (step_after(i) > 0 ? excess : -excess));
    }
    if (std::abs(step_after(i)) > std::abs(step_after(steepest))) steepest = i;
  }
  const int32_t lack = wanted - std::abs(step_after(steepest));
  int16_t& next = (*samples)[(steepest + 1) % count];
  next = static_cast<int16_t>(next + (step_after(steepest) > 0 ? lack : -lack));
}

}  // namespace

double next_uniform(random_source* random) {
  random->state = random->state * 6364136223846793005U + 1442695040888963407U;
  return static_cast<double>(random->state >> 11) * 0x1p-53;
}

double centred_cents(const tone& tone, double tilt, int32_t highest) {
  double energy = 0.0;
  double sum = 0.0;
  for (const partial& partial : tone.partials) {
    if (partial.harmonic == 0 || partial.harmonic > highest) continue;
    const double power = std::pow(tilted_level(partial, tone, tilt), 2.0);
    energy += power;
    sum += power * 1200.0 * std::log2(partial.cycles / (partial.harmonic * tone.root_cycles));
  }
  return sum / energy;
}

std::vector<double> tone_signal(const tone& tone, double tilt, int32_t count) {
  const partial_adder adder(tone.period);
  std::vector<double> signal(static_cast<size_t>(count));
  for (const partial& partial : tone.partials) adder.add(partial, tilted_level(partial, tone, tilt), &signal);
  return signal;
}

void scatter_phases(random_source* random, tone* tone) {
  for (partial& partial : tone->partials) {
    const double turns = next_uniform(random);
    if (tone->mirrored) {
      partial.phase = turns < 0.5 ? 0 : phases_per_turn / 2;
    } else {
      partial.phase = on_phase_grid(turn * turns);
    }
  }
}

void flatten_tone(double tilt, tone* tone) {
  if (tone->mirrored) {
    search_signs(tilt, tone);
  } else {
    search_phases(tilt, tone);
  }
}

double find_tilt(const tone& tone, int32_t wanted_step) {
  auto low = static_cast<int32_t>(-2 * tilt_steps);
  auto high = static_cast<int32_t>(4 * tilt_steps);
  while (low < high) {
    const int32_t middle = low + (high - low) / 2;
    const std::vector<double> signal = tone_signal(tone, middle / tilt_steps, distinct_entries(tone));
    const double step = largest_step(signal, !tone.mirrored) * full_scale / peak(signal);
    if (step > wanted_step) {
      low = middle + 1;
    } else {
      high = middle;
    }
  }
  return low / tilt_steps;
}

std::vector<int16_t> source_signal(const tone& tone, double tilt, int32_t wanted_step, int32_t count) {
  const std::vector<double> signal = tone_signal(tone, tilt, distinct_entries(tone));
  const double scale = full_scale / peak(signal);
  std::vector<int16_t> samples;
  samples.reserve(static_cast<size_t>(count));
  for (const double value : signal) samples.push_back(static_cast<int16_t>(std::lround(value * scale)));
  trim_steps(wanted_step, !tone.mirrored, &samples);
  while (samples.size() < static_cast<size_t>(count)) samples.push_back(samples[samples.size() - signal.size()]);
  return samples;
}
