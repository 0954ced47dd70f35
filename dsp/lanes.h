// MIT License. Vectors of 128 bits, which every processor the project runs on has.
#pragma once

#include <cstdint>
#include <cstring>

// Numbers that are added and multiplied lane by lane. No lane depends on another, so the width doesn't show in the
// results.
using int4 = int32_t __attribute__((vector_size(16)));
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

inline double2 load2(const double* from) {
  double2 value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

inline void store2(double2 value, double* to) {
  std::memcpy(to, &value, sizeof value);
}
