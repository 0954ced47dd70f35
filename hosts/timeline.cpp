// MIT License. When a rendering starts, lets go of its keys and ends.
#include "hosts/timeline.h"

#include <cmath>
#include <limits>

constexpr int core_latency_samples = 1024;

// The synthesizer's filter opens from nothing, with a time constant of 68 ms, and once more by a step per block. After
// a second the first syllable is as clear as all others, and blocks of any length sound alike. Whole seconds are whole
// samples at every rate, which keeps converted streams aligned.
constexpr double run_in_seconds = 1.0;
// How long the chord stays after the last word, for the envelopes to fall by themselves.
constexpr double hold_seconds = 0.25;
// What the chord itself takes to fall by 60 dB after that: seven time constants of 11.4 ms, and some room.
constexpr double release_seconds = 0.1;
// More than the largest hall needs for 60 dB; a tail that hasn't died away by then is cut.
constexpr double longest_reverb_seconds = 12.0;

static int64_t samples_of(double seconds, int rate_hz) {
  return std::llround(seconds * rate_hz);
}

static int64_t rounded_up(int64_t samples, int64_t block) {
  return (samples + block - 1) / block * block;
}

int64_t latency_samples(int rate_hz) {
  return std::llround(static_cast<double>(core_latency_samples) * rate_hz / core_rate_hz);
}

int shortest_block(int rate_hz) {
  return static_cast<int>(std::ceil(0.5 * rate_hz / core_rate_hz));
}

timeline timeline_of(int64_t voice_samples, int rate_hz, int block, bool compensate, bool reverb) {
  const int64_t latency = latency_samples(rate_hz);
  const int64_t run_in = -samples_of(run_in_seconds, rate_hz);
  if (compensate) {
    const int64_t end = latency + voice_samples;
    return {run_in, latency, std::numeric_limits<int64_t>::max(), end, end};
  }
  const int64_t held = voice_samples + latency + samples_of(hold_seconds, rate_hz);
  const int64_t keys_up = run_in + rounded_up(held - run_in, block);
  const int64_t end = keys_up + latency + samples_of(release_seconds, rate_hz);
  return {run_in, 0, keys_up, end, end + (reverb ? samples_of(longest_reverb_seconds, rate_hz) : 0)};
}
