// MIT License. Vectors for kernels that are compiled twice: of 128 bits for every processor, and of 256 bits.
#pragma once

#include <cstdint>
#include <cstring>
#include <utility>

#include "dsp/lanes.h"
#include "dsp/processor.h"

// A kernel takes the vector as its template parameter V: float4, or float8 in a function marked KESREL_AVX2. What it
// calls is inlined and takes and gives vectors by address, as outside such a function none of 256 bits can be passed.

template <typename V>
constexpr int32_t lanes_of = sizeof(V) / sizeof(std::declval<V>()[0]);

template <typename V, typename number>
KESREL_INLINE void load(const number* from, V* value) {
  V loaded;
  std::memcpy(&loaded, from, sizeof loaded);
  *value = loaded;
}

template <typename V, typename number>
KESREL_INLINE void store(const V& value, number* to) {
  const V stored = value;
  std::memcpy(to, &stored, sizeof stored);
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

// Turns four rows of four numbers into their columns, in the lower and the upper halves alike.
KESREL_INLINE void transpose_halves(float8* rows) {
  const float8 low01 = __builtin_shufflevector(rows[0], rows[1], 0, 8, 1, 9, 4, 12, 5, 13);
  const float8 high01 = __builtin_shufflevector(rows[0], rows[1], 2, 10, 3, 11, 6, 14, 7, 15);
  const float8 low23 = __builtin_shufflevector(rows[2], rows[3], 0, 8, 1, 9, 4, 12, 5, 13);
  const float8 high23 = __builtin_shufflevector(rows[2], rows[3], 2, 10, 3, 11, 6, 14, 7, 15);
  rows[0] = __builtin_shufflevector(low01, low23, 0, 1, 8, 9, 4, 5, 12, 13);
  rows[1] = __builtin_shufflevector(low01, low23, 2, 3, 10, 11, 6, 7, 14, 15);
  rows[2] = __builtin_shufflevector(high01, high23, 0, 1, 8, 9, 4, 5, 12, 13);
  rows[3] = __builtin_shufflevector(high01, high23, 2, 3, 10, 11, 6, 7, 14, 15);
}

KESREL_INLINE void without_sign(const float4& x, float4* result) {
  *result = magnitude(x);
}
KESREL_INLINE void without_sign(const float8& x, float8* result) {
  using int8 = int32_t __attribute__((vector_size(32)));
  *result = reinterpret_cast<float8>(reinterpret_cast<int8>(x) & 0x7fffffff);
}
