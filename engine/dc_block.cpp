// MIT License.
#include "engine/dc_block.h"

#include <emmintrin.h>

#include <array>
#include <cstring>

#include "dsp/lanes.h"

// What limits this filter is the way from one sample to the next, so everything that doesn't need the last output is
// kept off it, and two signals go along it in the lanes of one vector.

namespace {

using uint4 = uint32_t __attribute__((vector_size(16)));  // sums wrap

constexpr float full_scale = 32767.0F;
constexpr float step = 3.051851e-05F;  // 1 / full_scale
constexpr int32_t fraction_bits = 15;
constexpr int32_t leak_shift = 10;  // the accumulator loses 1 / 1024 of the output: 32 per step of it
constexpr int32_t leak_mask = -(1 << (fraction_bits - leak_shift));

// As truncate_to_int32: INT32_MIN for NaN and for values outside int32.
int4 truncated(float4 x) {
  return reinterpret_cast<int4>(_mm_cvttps_epi32(x));
}

float4 converted(int4 x) {
  return __builtin_convertvector(x, float4);
}

// Four samples in fixed point.
uint4 fixed_point(const float* samples) {
  return reinterpret_cast<uint4>(truncated(load4(samples) * splat(full_scale))) << fraction_bits;
}

// Four samples of one signal less those before them. `last` holds the four before, and then these.
uint4 rises(const float* samples, uint4* last) {
  const uint4 now = fixed_point(samples);
  const uint4 before = __builtin_shufflevector(*last, now, 3, 4, 5, 6);
  *last = now;
  return now - before;
}

struct pair_state {
  uint4 last_modulator{};
  uint4 last_carrier{};
  int4 accumulators{};  // modulator and carrier; the upper half is not used
};

// One sample of both. The leak is a multiple of 32 below 2^22, so it is the same number taken from the accumulator's
// bits as from the output in floating point.
int4 advanced(uint4 rise, int4 accumulators) {
  const int4 sum = reinterpret_cast<int4>(reinterpret_cast<uint4>(accumulators) + rise);
  const int4 leak = (accumulators >> leak_shift) & leak_mask;
  return truncated(converted(sum) - converted(leak));
}

float4 outputs(int4 accumulators) {
  return converted(accumulators >> fraction_bits) * splat(step);
}

void filter_four(float* modulator, float* carrier, pair_state* state) {
  const uint4 m = rises(modulator, &state->last_modulator);
  const uint4 c = rises(carrier, &state->last_carrier);
  const uint4 early = __builtin_shufflevector(m, c, 0, 4, 1, 5);
  const uint4 late = __builtin_shufflevector(m, c, 2, 6, 3, 7);
  const int4 first = advanced(early, state->accumulators);
  const int4 second = advanced(__builtin_shufflevector(early, early, 2, 3, 2, 3), first);
  const int4 third = advanced(late, second);
  const int4 fourth = advanced(__builtin_shufflevector(late, late, 2, 3, 2, 3), third);
  state->accumulators = fourth;
  const int4 early_pairs = __builtin_shufflevector(first, second, 0, 4, 1, 5);
  const int4 late_pairs = __builtin_shufflevector(third, fourth, 0, 4, 1, 5);
  store4(outputs(__builtin_shufflevector(early_pairs, late_pairs, 0, 1, 4, 5)), modulator);
  store4(outputs(__builtin_shufflevector(early_pairs, late_pairs, 2, 3, 6, 7)), carrier);
}

}  // namespace

void dc_block(float* samples, int32_t n) {
  dc_block_pair(samples, samples, n);
}

void dc_block_pair(float* modulator, float* carrier, int32_t n) {
  pair_state state;
  int32_t t = 0;
  for (; t + 4 <= n; t += 4) filter_four(modulator + t, carrier + t, &state);
  if (t == n) return;
  const size_t rest = static_cast<size_t>(n - t) * sizeof(float);
  std::array<float, 4> last_modulator{};
  std::array<float, 4> last_carrier{};
  std::memcpy(last_modulator.data(), modulator + t, rest);
  std::memcpy(last_carrier.data(), carrier + t, rest);
  filter_four(last_modulator.data(), last_carrier.data(), &state);
  std::memcpy(modulator + t, last_modulator.data(), rest);
  std::memcpy(carrier + t, last_carrier.data(), rest);
}
