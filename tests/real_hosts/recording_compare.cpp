// MIT License. Compares a recording from a host with what the effect makes of the same voice.
//
//   kesrel_recording_compare MODULE STATE VOICE RECORDING START [RUN_IN [EARLIER]]
//
// MODULE is the effect's, STATE a bank or program that it reads, VOICE mono at 44100 Hz. RECORDING is from a host with
// the same state, at any rate, and its frame START is where the voice should begin, latency included. RUN_IN says how
// many samples at 44100 Hz the effect had processed by then; without it or with 0, it is searched for.
// In the first EARLIER of these the effect was as it is without STATE: some hosts run their plug-ins to learn the
// latency before they restore them. Prints on one line what
// the recording and the effect's own output are like:
//
//   lufs, own_lufs     integrated loudness
//   estoi, own_estoi   how well the voice is understood
//   difference_db      the greatest difference relative to the effect's peak, nan at rates other than 44100 Hz, where
//                      the converter has its share
//   run_in             for which that is so
//   lag                frames by which the recording is behind; nan when the run-in isn't known
//   spectrum           correlation of both spectra's levels, 1 for the same chord by the same sound, 0 for unrelated
//   ones
#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <limits>
#include <numbers>
#include <string>
#include <vector>

#include "dsp/fft.h"
#include "hosts/effect/effect_host.h"
#include "hosts/effect/programs.h"
#include "hosts/effect/text.h"
#include "hosts/measures/estoi.h"
#include "hosts/measures/loudness.h"
#include "hosts/measures/resampled.h"
#include "hosts/voice/voice.h"
#include "tests/real_hosts/run_in.h"

namespace {

using measures::stereo;

// That of the doors, as the synthesizer's filter opens by a step in each block.
constexpr int block = 32;

constexpr double identical_db = -300;
constexpr double close_enough_db = -100;

struct sound_file {
  int rate_hz;
  stereo samples;
};

sound_file read(const std::string& path) {
  voice_reader file(path);
  sound_file result{file.rate_hz(), {std::vector<float>(static_cast<std::size_t>(file.frames())), {}}};
  result.samples.right.resize(result.samples.left.size());
  file.read({result.samples.left.data(), result.samples.right.data()}, static_cast<int>(file.frames()));
  if (file.channels() == 1) result.samples.right = result.samples.left;
  return result;
}

class own_rendering {
 public:
  own_rendering(std::string module, std::string state, std::vector<float> voice, int64_t earlier)
      : module_(std::move(module)), state_(std::move(state)), voice_(std::move(voice)), earlier_(earlier) {}

  // The effect's output from where the voice begins to where it ends, after `run_in` samples of silence.
  stereo take(int64_t run_in) const {
    effect_host host(module_, core_rate_hz, block, 1);
    if (earlier_ == 0) load_state(state_, &host);
    host.start();
    const auto voice_samples = static_cast<int64_t>(voice_.size());
    const int64_t dropped = run_in + latency_samples(core_rate_hz);
    stereo result;
    std::vector<float> in(block);
    std::vector<float> left(block);
    std::vector<float> right(block);
    float* inputs[2] = {in.data(), in.data()};
    float* outputs[2] = {left.data(), right.data()};
    for (int64_t position = 0; position < dropped + voice_samples; position += block) {
      if (earlier_ > 0 && position == earlier_ / block * block) load_state(state_, &host);
      for (int64_t i = 0; i < block; ++i) {
        const int64_t at = position + i - run_in;
        in[static_cast<std::size_t>(i)] = at >= 0 && at < voice_samples ? voice_[static_cast<std::size_t>(at)] : 0.0F;
      }
      host.process(inputs, outputs, block);
      const int64_t first = std::clamp<int64_t>(dropped - position, 0, block);
      const int64_t last = std::clamp<int64_t>(dropped + voice_samples - position, 0, block);
      result.left.insert(result.left.end(), left.begin() + first, left.begin() + last);
      result.right.insert(result.right.end(), right.begin() + first, right.begin() + last);
    }
    return result;
  }

  const std::vector<float>& voice() const { return voice_; }

 private:
  std::string module_;
  std::string state_;
  std::vector<float> voice_;
  int64_t earlier_;
};

std::vector<float> at_core_rate(const std::vector<float>& samples, int rate_hz) {
  if (rate_hz == core_rate_hz) return samples;
  return measures::resampled(samples, static_cast<double>(core_rate_hz) * measures::rate_hz / rate_hz);
}

// `count` samples at the effect's rate, from the recording's frame `start`.
stereo excerpt(const sound_file& recording, int64_t start, std::size_t count) {
  stereo result;
  const auto cut = [&](const std::vector<float>& channel) {
    const auto from = channel.begin() + std::min<int64_t>(start, std::ssize(channel));
    auto samples = at_core_rate({from, channel.end()}, recording.rate_hz);
    samples.resize(count);
    return samples;
  };
  result.left = cut(recording.samples.left);
  result.right = cut(recording.samples.right);
  return result;
}

double difference_db(const stereo& own, const stereo& recorded) {
  double peak = 0;
  double greatest = 0;
  for (const auto& [a, b] : {std::pair(&own.left, &recorded.left), std::pair(&own.right, &recorded.right)}) {
    for (std::size_t i = 0; i < a->size(); ++i) {
      peak = std::max(peak, std::abs(double{(*a)[i]}));
      greatest = std::max(greatest, std::abs(double{(*a)[i]} - double{(*b)[i]}));
    }
  }
  if (peak == 0) throw failure("the effect is silent");
  return std::max(identical_db, 20 * std::log10(greatest / peak));
}

using spectrum = std::vector<std::complex<float>>;

spectrum transformed(spectrum bins, bool forward) {
  int32_t log2_size = 0;
  std::vector<float> table(bins.size() / 4 + 1);
  fft_cos_table_init(&log2_size, static_cast<int32_t>(bins.size()), table.data());
  auto* const data = reinterpret_cast<float*>(bins.data());
  forward ? fft_forward(data, log2_size, table.data()) : fft_inverse(data, log2_size, table.data());
  return bins;
}

// The samples by which `recorded` is behind, from the peak of their correlation.
double lag_samples(const std::vector<float>& own, const std::vector<float>& recorded) {
  const std::size_t size = std::bit_ceil(own.size() + own.size() / 2);
  spectrum a(size);
  spectrum b(size);
  std::copy(own.begin(), own.end(), a.begin());
  std::copy(recorded.begin(), recorded.end(), b.begin());
  a = transformed(std::move(a), true);
  b = transformed(std::move(b), true);
  for (std::size_t i = 0; i < size; ++i) b[i] *= std::conj(a[i]);
  const spectrum products = transformed(std::move(b), false);
  const auto at = [&](std::size_t i) { return static_cast<double>(products[i % size].real()); };
  std::size_t peak = 0;
  for (std::size_t i = 0; i < size; ++i) peak = at(i) > at(peak) ? i : peak;
  // The top of a parabola through the peak and its neighbours.
  const double before = at(peak + size - 1);
  const double after = at(peak + 1);
  const double top = 0.5 * (before - after) / (before - 2 * at(peak) + after);
  const auto whole = static_cast<double>(peak) - (peak > size / 2 ? static_cast<double>(size) : 0.0);
  return whole + top;
}

// The mean levels in dB of narrow bands in which partials are resolved, down to 60 dB below the highest.
std::vector<double> band_levels_db(const std::vector<float>& signal) {
  constexpr std::size_t size = 16384;
  constexpr double lowest_hz = 60;
  constexpr double highest_hz = 4000;
  constexpr double depth_db = 60;
  std::vector<double> powers(size / 2);
  for (std::size_t start = 0; start + size <= signal.size(); start += size / 2) {
    spectrum bins(size);
    for (std::size_t i = 0; i < size; ++i) {
      const double turn = 2 * std::numbers::pi * static_cast<double>(i) / size;
      bins[i] = signal[start + i] * static_cast<float>(0.5 - 0.5 * std::cos(turn));
    }
    bins = transformed(std::move(bins), true);
    for (std::size_t i = 0; i < powers.size(); ++i) powers[i] += static_cast<double>(std::norm(bins[i]));
  }
  const double highest = std::max(*std::max_element(powers.begin(), powers.end()), 1e-30);
  std::vector<double> levels;
  for (std::size_t i = 0; i < powers.size(); ++i) {
    const double hz = static_cast<double>(i) * core_rate_hz / size;
    if (hz < lowest_hz || hz > highest_hz) continue;
    levels.push_back(std::max(10 * std::log10(powers[i] / highest + 1e-30), -depth_db));
  }
  return levels;
}

struct comparison {
  double difference_db;
  int64_t run_in;
};

comparison compare(const own_rendering& own, const stereo& recorded, int64_t run_in) {
  return {difference_db(own.take(run_in), recorded), run_in};
}

comparison search(const own_rendering& own, const stereo& recorded) {
  comparison best{std::numeric_limits<double>::infinity(), 0};
  const auto left_of_take = [&](int64_t run_in) { return own.take(run_in).left; };
  for (const int64_t run_in : likely_run_ins(recorded.left, left_of_take)) {
    const comparison next = compare(own, recorded, run_in);
    if (next.difference_db < best.difference_db) best = next;
    if (best.difference_db < close_enough_db) break;
  }
  return best;
}

void report(const char* const* arguments, int64_t run_in, int64_t earlier) {
  const std::string voice_path = arguments[3];
  const sound_file voice = read(voice_path);
  if (voice.rate_hz != core_rate_hz) throw failure("voice '" + voice_path + "' isn't at 44100 Hz");
  const own_rendering own(arguments[1], arguments[2], voice.samples.left, earlier);
  const sound_file recording = read(arguments[4]);
  const stereo recorded = excerpt(recording, std::atoll(arguments[5]), own.voice().size());

  comparison result{std::numeric_limits<double>::quiet_NaN(), run_in};
  if (recording.rate_hz == core_rate_hz) {
    result = run_in > 0 ? compare(own, recorded, run_in) : search(own, recorded);
  }
  const stereo own_take = own.take(std::max(result.run_in, shortest_run_in));
  double lag = std::numeric_limits<double>::quiet_NaN();
  if (result.run_in > 0) {
    lag = lag_samples(measures::mono_of(own_take), measures::mono_of(recorded)) * recording.rate_hz / core_rate_hz;
  }
  const double spectra =
      measures::correlation(band_levels_db(measures::mono_of(own_take)), band_levels_db(measures::mono_of(recorded)));
  std::printf(
      "lufs=%.2f own_lufs=%.2f estoi=%.3f own_estoi=%.3f difference_db=%.1f run_in=%lld lag=%.3f spectrum=%.4f\n",
      measures::loudness_lufs(recorded), measures::loudness_lufs(own_take),
      measures::estoi(own.voice(), measures::mono_of(recorded)),
      measures::estoi(own.voice(), measures::mono_of(own_take)), result.difference_db,
      static_cast<long long>(result.run_in), lag, spectra);
}

}  // namespace

int main(int count, char** arguments) {
  if (count < 6 || count > 8) return 2;
  try {
    report(arguments, count > 6 ? std::atoll(arguments[6]) : 0, count > 7 ? std::atoll(arguments[7]) : 0);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kesrel_recording_compare: %s\n", error.what());
    return 2;
  }
  return 0;
}
