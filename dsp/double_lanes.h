// MIT License. Four doubles side by side: one vector in functions compiled for 256 bits, two of 128 in all others.
#pragma once

#include <cstdint>

#include "dsp/lanes.h"
#include "dsp/processor.h"

using double4_vector = double __attribute__((vector_size(32)));
using long4_vector = int64_t __attribute__((vector_size(32)));

// In structs, because a bare vector of 256 bits would be passed in different ways by functions with and without
// KESREL_AVX2, which compilers refuse even where nothing is passed in the end.
struct double4 {
  double4_vector lanes;
};
struct long4 {
  long4_vector lanes;  // what comparisons give: all bits of a lane, or none
};

KESREL_INLINE double4 operator+(const double4& a, const double4& b) {
  return {a.lanes + b.lanes};
}

KESREL_INLINE double4 operator-(const double4& a, const double4& b) {
  return {a.lanes - b.lanes};
}

KESREL_INLINE double4 operator*(const double4& a, const double4& b) {
  return {a.lanes * b.lanes};
}

KESREL_INLINE long4 operator>(const double4& a, const double4& b) {
  return {a.lanes > b.lanes};
}

// The lanes of `value` that are set in `mask`, and 0 in the others.
KESREL_INLINE double4 masked(const long4& mask, const double4& value) {
  return {reinterpret_cast<double4_vector>(mask.lanes & reinterpret_cast<long4_vector>(value.lanes))};
}

KESREL_INLINE float4 masked(int4 mask, float4 value) {
  return reinterpret_cast<float4>(mask & reinterpret_cast<int4>(value));
}

KESREL_INLINE double4 splat(double value) {
  return {double4_vector{value, value, value, value}};
}

// Lane by lane, from which GCC 12 makes one instruction: it would convert the halves of a vector through memory.
KESREL_INLINE double4 widened(float4 value) {
  return {double4_vector{static_cast<double>(value[0]), static_cast<double>(value[1]), static_cast<double>(value[2]),
                         static_cast<double>(value[3])}};
}

KESREL_INLINE float4 narrowed(const double4& value) {
  return __builtin_convertvector(value.lanes, float4);
}

KESREL_INLINE int4 narrowed(const long4& mask) {
  return __builtin_convertvector(mask.lanes, int4);
}
