// MIT License. Vectors for kernels that are compiled twice: of 128 bits for every processor, and of 256 bits.
#pragma once

#include <cstdint>
#include <cstring>

#include "dsp/lanes.h"
#include "dsp/processor.h"

using float8 = float __attribute__((vector_size(32)));

// A kernel takes the vector as its template parameter V: float4, or float8 in a function marked KESREL_AVX2. What it
// calls is inlined and takes and gives vectors by address, as outside such a function none of 256 bits can be passed.

template <typename V>
constexpr int32_t lanes_of = sizeof(V) / sizeof(float);

template <typename V>
KESREL_INLINE void load(const float* from, V* value) {
  std::memcpy(value, from, sizeof *value);
}

template <typename V>
KESREL_INLINE void store(const V& value, float* to) {
  std::memcpy(to, &value, sizeof value);
}

// Takes two vectors of neighbours apart into those at even and at odd places.
KESREL_INLINE void take_apart(const float4& a, const float4& b, float4* even, float4* odd) {
  *even = __builtin_shufflevector(a, b, 0, 2, 4, 6);
  *odd = __builtin_shufflevector(a, b, 1, 3, 5, 7);
}
KESREL_INLINE void take_apart(const float8& a, const float8& b, float8* even, float8* odd) {
  *even = __builtin_shufflevector(a, b, 0, 2, 4, 6, 8, 10, 12, 14);
  *odd = __builtin_shufflevector(a, b, 1, 3, 5, 7, 9, 11, 13, 15);
}

// Undoes it.
KESREL_INLINE void put_together(const float4& even, const float4& odd, float4* a, float4* b) {
  *a = __builtin_shufflevector(even, odd, 0, 4, 1, 5);
  *b = __builtin_shufflevector(even, odd, 2, 6, 3, 7);
}
KESREL_INLINE void put_together(const float8& even, const float8& odd, float8* a, float8* b) {
  *a = __builtin_shufflevector(even, odd, 0, 8, 1, 9, 2, 10, 3, 11);
  *b = __builtin_shufflevector(even, odd, 4, 12, 5, 13, 6, 14, 7, 15);
}
