// MIT License. The random source of noise and random phases: a 15-bit linear congruential generator per thread.
#pragma once

#include <cstdint>

// State of the calling thread's generator. It starts at 1 and nothing seeds it, so that a render can be repeated.
// The initial-exec model keeps its four bytes in the thread's own block: the general model may call the heap at a
// thread's first access from a loaded module, which would be on the audio path. The Windows compiler ignores it and
// does call the heap at a thread's first draw.
[[gnu::tls_model("initial-exec")]] inline constinit thread_local uint32_t noise_state = 1;

// Next pseudo-random number of a generator, 0 to 32767.
//   formula  state = state * 214013 + 2531011 modulo 2^32, result in bits 16 to 30. Full period 2^32: the increment is
//            odd and the multiplier is 1 modulo 4 (Knuth, The Art of Computer Programming 2, theorem 3.2.1.2 A). The
//            low bits of such a generator are poor and are left out
constexpr int32_t noise_next(uint32_t* state) {
  *state = *state * 214013U + 2531011U;
  return static_cast<int32_t>((*state >> 16) & 0x7fffU);
}

// Next pseudo-random number of the calling thread.
inline int32_t noise_rand() {
  return noise_next(&noise_state);
}

// State of the generator after `count` more numbers, without drawing them.
//   formula  the step is an affine map; its powers of two are composed by squaring
constexpr uint32_t noise_state_after(uint32_t state, uint32_t count) {
  uint32_t factor = 214013U;
  uint32_t summand = 2531011U;
  for (; count != 0; count >>= 1) {
    if ((count & 1U) != 0) state = state * factor + summand;
    summand = summand * factor + summand;
    factor *= factor;
  }
  return state;
}
