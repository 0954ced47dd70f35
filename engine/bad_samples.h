// MIT License. Replaces NaN and infinite samples by silence.
#pragma once

#include <cmath>
#include <limits>

#include "dsp/lanes.h"

// A NaN or infinity in a recursion would never leave it.
inline float finite_or_zero(float sample) {
  return std::isfinite(sample) ? sample : 0.0F;
}
inline float4 finite_or_zero(float4 values) {
  const int4 finite = magnitude(values) <= std::numeric_limits<float>::max();
  return reinterpret_cast<float4>(reinterpret_cast<int4>(values) & finite);
}
