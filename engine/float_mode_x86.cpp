// MIT License.
#include <xmmintrin.h>

#include "engine/float_mode.h"

void float_mode_flush_denormals() {
  constexpr unsigned int flush_to_zero = 1U << 15;
  constexpr unsigned int denormals_are_zero = 1U << 6;
  _mm_setcsr(_mm_getcsr() | flush_to_zero | denormals_are_zero);
}
