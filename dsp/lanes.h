// MIT License. Vectors of 128 bits, which every processor the project runs on has.
#pragma once

#include <cstring>

// Numbers that are added and multiplied lane by lane. No lane depends on another, so the width doesn't show in the
// results.
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

inline double2 load2(const double* from) {
  double2 value;
  std::memcpy(&value, from, sizeof value);
  return value;
}

inline void store2(double2 value, double* to) {
  std::memcpy(to, &value, sizeof value);
}
