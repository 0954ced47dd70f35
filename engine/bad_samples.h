// MIT License. What becomes of samples that are none.
#pragma once

#include <cmath>

// NaN and infinity are silence: one of them in a recursion would stay for good.
inline float finite_or_zero(float sample) {
  return std::isfinite(sample) ? sample : 0.0F;
}
