// MIT License. Instructions beyond those that every processor the project runs on has.
#pragma once

// Marks a function that may use vectors of 256 bits; call it only where processor_has_avx2(). What it shares with its
// version for every processor is a KESREL_INLINE function or template, which is compiled into both. Both give the same
// results: lanes hold independent numbers, and no multiplication is fused with an addition.
#define KESREL_AVX2 __attribute__((target("avx2")))
#define KESREL_INLINE inline __attribute__((always_inline))

// Whether this processor has 256-bit vectors and the system keeps their registers. Never on Windows: there GCC doesn't
// align such vectors on the stack, and crashes (its bug 54412).
inline bool processor_has_avx2() {
#ifdef _WIN32
  return false;
#else
  static const bool has = __builtin_cpu_supports("avx2") != 0;
  return has;
#endif
}
