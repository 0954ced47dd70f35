// MIT License. When a rendering begins, and when what happens in it.
#include "hosts/render/timeline.h"

#include <cmath>
#include <limits>

#include "hosts/effect/effect_host.h"

namespace {

// The synthesizer's filter opens from zero with a time constant of 68 ms, and by a further step in each block. After a
// second it is open, so that the first syllable is as clear as the others and the block length makes no difference. A
// whole number of seconds is a whole number of samples at every rate, which keeps the converted streams aligned.
constexpr double run_in_seconds = 1.0;
// How long the keys are held after the voice has ended, so that its envelopes decay first.
constexpr double hold_seconds = 0.25;
// Time for the released chord to decay by 60 dB: seven time constants of 11.4 ms, and a margin.
constexpr double release_seconds = 0.1;
// Longer than the largest hall needs to decay by 60 dB; a longer tail is cut.
constexpr double longest_reverb_seconds = 12.0;

int64_t rounded_up(int64_t samples, int64_t block) {
  return (samples + block - 1) / block * block;
}

}  // namespace

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

int64_t samples_of(double seconds, int rate_hz) {
  return std::llround(seconds * rate_hz);
}

int64_t at_rate(int64_t samples, int from_hz, int to_hz) {
  return std::llround(static_cast<double>(samples) * to_hz / from_hz);
}
