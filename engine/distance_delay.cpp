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

// What the delays of a source follow from.
struct reach {
  float max_distance;
  float samples_per_metre;
  float length;
  float last;  // the longest delay
};

reach reach_of(const distance_delay& delay) {
  const auto length = static_cast<float>(delay.length);
  return {delay.max_distance, delay.sample_rate / delay.speed, length, length - 1.0F};
}

float distance_at(float position, const reach& reach) {
  return limited(position * reach.max_distance, nearest, reach.max_distance);
}

float samples_at(float distance, const reach& reach) {
  const float raised = std::max(1.0F, reach.samples_per_metre * distance);  // 1 for NaN
  return raised >= reach.length ? reach.last : raised;
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

void set_targets(const double* positions, int32_t count, const distance_delay& delay, float* targets) {
  const reach fixed = reach_of(delay);
  for (int32_t i = 0; i < count; ++i)
    targets[i] = samples_at(distance_at(static_cast<float>(positions[i]), fixed), fixed);
}

void end_glide(double position, float now, distance_delay* delay) {
  if (delay->ready == 0) return;
  distance_delay_set(static_cast<float>(position), false, delay);
  delay->delay = now;
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
  const reach reach = reach_of(*delay);
  delay->distance = distance_at(position, reach);
  delay->target_delay = samples_at(delay->distance, reach);
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

void distance_delay_glide(const double* left_positions, const double* right_positions, int32_t count,
                          float* left_samples, float* right_samples, distance_delay* left, distance_delay* right) {
  if (count < 1) return;
  float left_now = left->delay;
  float right_now = right->delay;
  set_targets(left_positions, count, *left, left_samples);
  set_targets(right_positions, count, *right, right_samples);
  for (int32_t i = 0; i < count; ++i) {
    left_samples[i] = left_now = glided(left_now, left_samples[i]);
    right_samples[i] = right_now = glided(right_now, right_samples[i]);
  }
  end_glide(left_positions[count - 1], left_now, left);
  end_glide(right_positions[count - 1], right_now, right);
}

void distance_delay_run(const float* samples, int32_t count, float* signal, distance_delay* delay) {
  if (delay->ready == 0) return;
  const int32_t ring_size = delay->length + 1;
  float* const ring = delay->start;
  auto write = static_cast<int32_t>(delay->write - ring);
  for (int32_t i = 0; i < count; ++i) signal[i] = ring_step(signal[i], samples[i], ring_size, ring, &write);
  delay->write = ring + write;
}
