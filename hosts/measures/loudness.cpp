// MIT License. Loudness and peaks by EBU R 128.
#include "hosts/measures/loudness.h"

#include <ebur128.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <new>

namespace measures {

namespace {

struct closer {
  void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
};
using meter = std::unique_ptr<ebur128_state, closer>;

// A meter that has heard all of `sound`.
meter meter_of(const stereo& sound, int mode) {
  meter result(ebur128_init(2, rate_hz, mode));
  if (!result) throw std::bad_alloc();
  std::vector<float> interleaved(2 * sound.left.size());
  for (std::size_t i = 0; i < sound.left.size(); ++i) {
    interleaved[2 * i] = sound.left[i];
    interleaved[2 * i + 1] = sound.right[i];
  }
  if (ebur128_add_frames_float(result.get(), interleaved.data(), sound.left.size()) != EBUR128_SUCCESS) {
    throw std::bad_alloc();
  }
  return result;
}

float highest_sample(const stereo& sound) {
  float highest = 0.0F;
  for (const auto* channel : {&sound.left, &sound.right}) {
    for (const float x : *channel) highest = std::max(highest, std::abs(x));
  }
  return highest;
}

}  // namespace

double loudness_lufs(const stereo& sound) {
  double lufs = -HUGE_VAL;
  ebur128_loudness_global(meter_of(sound, EBUR128_MODE_I).get(), &lufs);
  return lufs;
}

double true_peak_db(const stereo& sound) {
  const meter heard = meter_of(sound, EBUR128_MODE_TRUE_PEAK);
  double highest = 0.0;
  for (const unsigned channel : {0U, 1U}) {
    double peak = 0.0;
    ebur128_true_peak(heard.get(), channel, &peak);
    highest = std::max(highest, peak);
  }
  return 20.0 * std::log10(highest);
}

double highest_true_peak_db(const std::vector<const stereo*>& sounds) {
  std::vector<float> samples(sounds.size());
  std::transform(sounds.begin(), sounds.end(), samples.begin(),
                 [](const auto* sound) { return highest_sample(*sound); });
  const float highest = samples.empty() ? 0.0F : *std::max_element(samples.begin(), samples.end());
  double peak_db = -HUGE_VAL;
  for (std::size_t i = 0; i < sounds.size(); ++i) {
    if (samples[i] >= 0.7F * highest) peak_db = std::max(peak_db, true_peak_db(*sounds[i]));
  }
  return peak_db;
}

}  // namespace measures
