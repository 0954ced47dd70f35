// MIT License. Vectors of 128 bits, which every processor the project runs on has.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstring>

// What comparisons of such vectors give: all bits of a lane, or none.
using int4 = int32_t __attribute__((vector_size(16)));
using long2 = int64_t __attribute__((vector_size(16)));

// Numbers that are added and multiplied lane by lane. No lane depends on another, so the width doesn't show in the
// results.
using float2 = float __attribute__((vector_size(8)));
using float4 = float __attribute__((vector_size(16)));
using double2 = double __attribute__((vector_size(16)));

inline float4 load4(const float* from) {
  float4 value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

inline void store4(float4 value, float* to) {
  std::memcpy(to, &value, sizeof value);
}

inline float4 splat(float value) {
  return float4{value, value, value, value};
}

// Turns four rows of four numbers into their columns.
inline void transpose4(float4* rows) {
  const float4 low01 = __builtin_shufflevector(rows[0], rows[1], 0, 4, 1, 5);
  const float4 high01 = __builtin_shufflevector(rows[0], rows[1], 2, 6, 3, 7);
  const float4 low23 = __builtin_shufflevector(rows[2], rows[3], 0, 4, 1, 5);
  const float4 high23 = __builtin_shufflevector(rows[2], rows[3], 2, 6, 3, 7);
  rows[0] = __builtin_shufflevector(low01, low23, 0, 1, 4, 5);
  rows[1] = __builtin_shufflevector(low01, low23, 2, 3, 6, 7);
  rows[2] = __builtin_shufflevector(high01, high23, 0, 1, 4, 5);
  rows[3] = __builtin_shufflevector(high01, high23, 2, 3, 6, 7);
}

// Without the signs.
inline float4 magnitude(float4 x) {
  const auto bits = reinterpret_cast<int4>(x) & 0x7fffffff;
  return reinterpret_cast<float4>(bits);
}

inline float4 square_roots(float4 x) {
  for (int i = 0; i < 4; ++i) x[i] = std::sqrt(x[i]);
  return x;
}

inline float2 load2(const float* from) {
  float2 value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

inline float2 lower(float4 value) {
  return __builtin_shufflevector(value, value, 0, 1);
}

inline float2 upper(float4 value) {
  return __builtin_shufflevector(value, value, 2, 3);
}

inline float4 joined(float2 low, float2 high) {
  return __builtin_shufflevector(low, high, 0, 1, 2, 3);
}

inline double2 load2(const double* from) {
  double2 value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

inline void store2(double2 value, double* to) {
  std::memcpy(to, &value, sizeof value);
}

inline double2 widened(float2 value) {
  return __builtin_convertvector(value, double2);
}

inline float2 narrowed(double2 value) {
  return __builtin_convertvector(value, float2);
}

// Whether a comparison holds in all lanes.
inline bool all(int4 comparison) {
  const auto halves = reinterpret_cast<long2>(comparison);
  return (halves[0] & halves[1]) == -1;
}

// Eight lanes, for functions with vectors of 256 bits; see dsp/processor.h.
using float8 = float __attribute__((vector_size(32)));
