// MIT License.
#include "hosts/check/audio.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <cstdio>
#include <limits>
#include <numbers>

#include "hosts/check/checks.h"

namespace {

constexpr double silence_db = -300.0;

// A value that no plug-in computes, in its bits: a quiet NaN with a payload.
constexpr uint32_t unwritten_bits = 0x7FC0BEEF;
// Samples on each side of a block that must stay as they are.
constexpr int fence = 16;

bool is_unwritten(float sample) {
  return std::bit_cast<uint32_t>(sample) == unwritten_bits;
}

// Buffers of one size, each with a fence on both sides.
class fenced_buffers {
 public:
  fenced_buffers(int channels, int frames) : frames_(frames) {
    const auto size = static_cast<std::size_t>(frames + 2 * fence);
    samples_.assign(static_cast<std::size_t>(channels), std::vector<float>(size, std::bit_cast<float>(unwritten_bits)));
    for (auto& channel : samples_) pointers_.push_back(channel.data() + fence);
  }

  float* const* pointers() const { return pointers_.data(); }
  float* operator[](int channel) const { return pointers_[static_cast<std::size_t>(channel)]; }

  void check_fences() const {
    for (const auto& channel : samples_) {
      for (int i = 0; i < fence; ++i) {
        const auto before = static_cast<std::size_t>(i);
        const auto after = static_cast<std::size_t>(fence + frames_ + i);
        if (!is_unwritten(channel[before])) throw check_failed("writes before the start of a block");
        if (!is_unwritten(channel[after])) throw check_failed("writes past the end of a block");
      }
    }
  }

 private:
  int frames_;
  std::vector<std::vector<float>> samples_;
  std::vector<float*> pointers_;
};

using spectrum = std::vector<std::complex<double>>;

// In place; size a power of two. The sign of the exponent is `direction`; not scaled.
void transform(spectrum* values, double direction) {
  const std::size_t size = values->size();
  for (std::size_t i = 1, j = 0; i < size; ++i) {
    std::size_t bit = size / 2;
    for (; (j & bit) != 0; bit /= 2) j ^= bit;
    j ^= bit;
    if (i < j) std::swap((*values)[i], (*values)[j]);
  }
  for (std::size_t length = 2; length <= size; length *= 2) {
    const double angle = direction * 2.0 * std::numbers::pi / static_cast<double>(length);
    const std::complex<double> step = std::polar(1.0, angle);
    for (std::size_t start = 0; start < size; start += length) {
      std::complex<double> turn = 1.0;
      for (std::size_t k = 0; k < length / 2; ++k) {
        auto& low = (*values)[start + k];
        auto& high = (*values)[start + k + length / 2];
        const std::complex<double> turned = high * turn;
        high = low - turned;
        low += turned;
        turn *= step;
      }
    }
  }
}

spectrum spectrum_of(const std::vector<float>& samples, std::size_t size) {
  spectrum values(size);
  std::copy(samples.begin(), samples.end(), values.begin());
  transform(&values, -1.0);
  return values;
}

}  // namespace

double uniform(generator* random) {
  return static_cast<double>((*random)() >> 11) * 0x1p-53;
}

int below(int count, generator* random) {
  return static_cast<int>(uniform(random) * count);
}

audio voice(int channels, double seconds, double rate_hz, uint64_t seed) {
  audio sound = noise(channels, static_cast<int>(seconds * rate_hz), 0.5F, seed);
  for (auto& channel : sound) {
    double time = 0.0;
    for (float& sample : channel) {
      sample *= static_cast<float>(0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * 4.0 * time++ / rate_hz));
    }
  }
  return sound;
}

audio bursts(double seconds, double rate_hz, uint64_t seed) {
  audio sound = noise(1, static_cast<int>(seconds * rate_hz), 0.5F, seed);
  generator random(seed + 1);
  bool is_on = false;
  double until_seconds = 0.0;
  for (std::size_t i = 0; i < sound[0].size(); ++i) {
    if (static_cast<double>(i) >= until_seconds * rate_hz) {
      is_on = !is_on;
      until_seconds += 0.03 + 0.12 * uniform(&random);
    }
    if (!is_on) sound[0][i] = 0.0F;
  }
  return sound;
}

audio silence(int channels, int frames) {
  return audio(static_cast<std::size_t>(channels), std::vector<float>(static_cast<std::size_t>(frames)));
}

audio noise(int channels, int frames, float peak, uint64_t seed) {
  audio sound = silence(channels, frames);
  generator random(seed);
  for (auto& channel : sound) {
    for (float& sample : channel) sample = peak * static_cast<float>(2.0 * uniform(&random) - 1.0);
  }
  return sound;
}

int frames_of(const audio& sound) {
  return sound.empty() ? 0 : static_cast<int>(sound[0].size());
}

bool is_finite(const audio& sound) {
  for (const auto& channel : sound) {
    for (const float sample : channel) {
      if (!std::isfinite(sample)) return false;
    }
  }
  return true;
}

double peak(const audio& sound, int from) {
  double largest = 0.0;
  for (const auto& channel : sound) {
    for (std::size_t i = static_cast<std::size_t>(from); i < channel.size(); ++i) {
      largest = std::max(largest, std::abs(double{channel[i]}));
    }
  }
  return largest;
}

double level_db(const audio& sound, int from) {
  double sum = 0.0;
  double count = 0.0;
  for (const auto& channel : sound) {
    for (std::size_t i = static_cast<std::size_t>(from); i < channel.size(); ++i) {
      sum += double{channel[i]} * channel[i];
      ++count;
    }
  }
  return sum > 0.0 ? std::max(silence_db, 10.0 * std::log10(sum / count)) : silence_db;
}

double difference_db(const audio& expected, const audio& actual, int from) {
  if (is_finite(expected) != is_finite(actual)) return -silence_db;
  double largest = 0.0;
  for (std::size_t c = 0; c < expected.size(); ++c) {
    for (std::size_t i = static_cast<std::size_t>(from); i < expected[c].size(); ++i) {
      const double difference = double{expected[c][i]} - actual[c][i];
      if (std::isfinite(difference)) largest = std::max(largest, std::abs(difference));
    }
  }
  if (largest == 0.0) return silence_db;
  return 20.0 * std::log10(largest / std::max(peak(expected, from), 1e-9));
}

std::string difference_text(double db) {
  if (db <= silence_db) return "none";
  char text[32];
  std::snprintf(text, sizeof text, "%.1f dB", db);
  return text;
}

delay_estimate measured_delay(const std::vector<float>& in, const std::vector<float>& out, int largest) {
  const std::size_t size = std::bit_ceil(in.size() + out.size());
  spectrum product = spectrum_of(out, size);
  const spectrum other = spectrum_of(in, size);
  for (std::size_t i = 0; i < size; ++i) product[i] *= std::conj(other[i]);
  transform(&product, 1.0);
  delay_estimate result;
  double best = 0.0;
  double sum = 0.0;
  for (int lag = 0; lag <= largest; ++lag) {
    const double value = std::abs(product[static_cast<std::size_t>(lag)].real());
    sum += value * value;
    if (value > best) {
      best = value;
      result.samples = lag;
    }
  }
  const double others = std::sqrt(sum / (largest + 1));
  result.distinctness = others > 0.0 ? best / others : 0.0;
  return result;
}

std::vector<float> envelope(const std::vector<float>& sound, double rate_hz) {
  constexpr double half_window_seconds = 0.005;
  std::vector<double> sums = {0.0};  // of the magnitudes before each sample
  for (const float sample : sound) sums.push_back(sums.back() + std::abs(double{sample}));
  const auto sum_before = [&](double seconds) {
    const double place = std::clamp(seconds * rate_hz, 0.0, static_cast<double>(sound.size()));
    return sums[static_cast<std::size_t>(place)];
  };
  std::vector<float> result;
  const double seconds = static_cast<double>(sound.size()) / rate_hz;
  const double mean = sums.back() / seconds * 2.0 * half_window_seconds;
  const int count = static_cast<int>(seconds * envelope_rate_hz);
  for (int i = 0; i < count; ++i) {
    const double time = i / envelope_rate_hz;
    const double here = sum_before(time + half_window_seconds) - sum_before(time - half_window_seconds);
    result.push_back(static_cast<float>(here - mean));
  }
  return result;
}

audio render(plugin_under_test* plugin, const audio& in, const block_plan& plan) {
  const int inputs = plugin->facts().inputs;
  const int outputs = plugin->facts().outputs;
  const int total = frames_of(in);
  audio result = silence(outputs, total);
  std::span<const midi_message> events = plan.first_events;
  std::size_t turn = 0;
  for (int done = 0; done < total;) {
    const int count = std::min(plan.sizes[turn++ % plan.sizes.size()], total - done);
    const fenced_buffers inside(std::max(inputs, outputs), count);
    const fenced_buffers outside(outputs, count);
    const auto take = [&](int channel, float* to) {
      const auto& from = in[static_cast<std::size_t>(channel) % in.size()];
      std::copy_n(from.begin() + done, count, to);
    };
    for (int c = 0; c < inputs; ++c) take(c, inside[c]);
    const fenced_buffers& out = plan.in_place ? inside : outside;
    plugin->process(inside.pointers(), out.pointers(), count, events);
    events = {};
    inside.check_fences();
    outside.check_fences();
    for (int c = 0; c < outputs; ++c) {
      if (count > 0 && std::any_of(out[c], out[c] + count, is_unwritten)) {
        throw check_failed("leaves samples of output " + std::to_string(c + 1) + " unwritten");
      }
      std::copy_n(out[c], count, result[static_cast<std::size_t>(c)].begin() + done);
    }
    for (int c = 0; c < inputs && !plan.in_place; ++c) {
      std::vector<float> original(static_cast<std::size_t>(count));
      take(c, original.data());
      if (!std::equal(original.begin(), original.end(), inside[c],
                      [](float a, float b) { return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b); })) {
        throw check_failed("changes its input buffer");
      }
    }
    done += count;
  }
  return result;
}
