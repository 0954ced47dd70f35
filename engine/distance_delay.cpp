// MIT License.
#include "engine/distance_delay.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "dsp/convert.h"

namespace {

constexpr float seconds_per_metre = 0.002915452F;  // 1 / 343
constexpr float nearest = 1.0F;                    // m
constexpr int32_t spare_samples = 32;              // after the ring, never used for signal
constexpr int32_t longest_ring = 1 << 24;          // beyond it single precision can't count samples

// One step of the glide is the mean of 3000 times the delay and once the target. Slow enough for the change of pitch
// that a moving source brings to stay soft.
constexpr float glide_samples = 3000.0F;
constexpr float glide_share = 0.00033322227F;  // 1 / 3001

// A comparison with NaN is false, so that NaN becomes the lower limit.
float limited(float value, float low, float high) {
  const float raised = value > low ? value : low;
  return raised < high ? raised : high;
}

float distance_at(float position, const distance_delay& delay) {
  return limited(position * delay.max_distance, nearest, delay.max_distance);
}

float samples_at(float distance, const distance_delay& delay) {
  const float samples = (delay.sample_rate / delay.speed) * distance;
  const float raised = samples > 1.0F ? samples : 1.0F;
  const auto length = static_cast<float>(delay.length);
  return raised >= length ? length - 1.0F : raised;
}

float glided(float from, float target) {
  return (from * glide_samples + target) * glide_share;
}

// Reads the ring `samples` behind the write position, puts `in` there and moves on.
float ring_step(float in, float samples, int32_t ring_size, float* ring, int32_t* write) {
  const auto whole = static_cast<int32_t>(samples);
  // The rounding of the glide can carry the delay a little past its target, and a long one past the ring's end.
  int32_t read = *write + (whole >= ring_size ? whole - ring_size : whole);
  if (read >= ring_size) read -= ring_size;
  const int32_t next = read + 1 == ring_size ? 0 : read + 1;
  const float a = ring[read];
  const float c = ring[next];
  ring[*write] = in;
  *write = *write == 0 ? ring_size - 1 : *write - 1;
  return (c - a) * (samples - static_cast<float>(whole)) + a;
}

void create(distance_delay* delay) {
  const float longest = delay->sample_rate * delay->max_distance * seconds_per_metre + 0.5F;
  delay->length = truncate_to_int32(longest);
  distance_delay_prepare(delay);
}

}  // namespace

void distance_delay_create(distance_delay* delay) {
  *delay = distance_delay{};
  create(delay);
}

void distance_delay_create(float sample_rate, int32_t max_distance, distance_delay* delay) {
  *delay = distance_delay{};
  delay->sample_rate = sample_rate;
  delay->max_distance = static_cast<float>(max_distance);
  create(delay);
}

void distance_delay_prepare(distance_delay* delay) {
  if (delay->ready != 0 || delay->length < 1 || delay->length > longest_ring) return;
  const size_t size = static_cast<size_t>(delay->length) + spare_samples;
  if (delay->storage == nullptr) delay->storage.reset(new (std::nothrow) float[size]);
  if (delay->storage == nullptr) return;
  std::fill_n(delay->storage.get(), size, 0.0F);
  delay->ready = 1;
  delay->start = delay->storage.get();
  delay->write = delay->start;
  distance_delay_set(0.0F, true, delay);
}

void distance_delay_clear(distance_delay* delay) {
  if (delay->ready != 0) std::fill_n(delay->start, delay->length + 1, 0.0F);
}

void distance_delay_release(distance_delay* delay) {
  delay->ready = 0;
  delay->start = nullptr;
  delay->write = nullptr;
  delay->storage.reset();
}

void distance_delay_set(float position, bool snap, distance_delay* delay) {
  delay->distance = distance_at(position, *delay);
  delay->target_delay = samples_at(delay->distance, *delay);
  if (snap) delay->delay = delay->target_delay;
}

// Computed on demand: the chorus and the reverb move four delays with every sample, and a logarithm and a power for
// each of them would cost more than the delays themselves.
float distance_delay_gain(const distance_delay& delay) {
  const double level = std::log10(1.0 / std::sqrt(double{delay.distance}));
  return static_cast<float>(std::pow(10.0, level * 20.0 * 0.05));
}

void distance_delay_process(const float* in, float* out, int32_t count, distance_delay* delay) {
  if (delay->ready == 0) return;
  auto write = static_cast<int32_t>(delay->write - delay->start);
  for (int32_t i = 0; i < count; ++i) {
    delay->delay = glided(delay->delay, delay->target_delay);
    out[i] = ring_step(in[i], delay->delay, delay->length + 1, delay->start, &write);
  }
  delay->write = delay->start + write;
}

void distance_delay_follow(const double* positions, float* samples, int32_t count, distance_delay* delay) {
  if (delay->ready == 0 || count < 1) return;
  const int32_t ring_size = delay->length + 1;
  float* const ring = delay->start;
  auto write = static_cast<int32_t>(delay->write - ring);
  float now = delay->delay;
  for (int32_t i = 0; i < count; ++i) {
    now = glided(now, samples_at(distance_at(static_cast<float>(positions[i]), *delay), *delay));
    samples[i] = ring_step(samples[i], now, ring_size, ring, &write);
  }
  distance_delay_set(static_cast<float>(positions[count - 1]), false, delay);
  delay->delay = now;
  delay->write = ring + write;
}
