// MIT License. Conversion of floating-point numbers to integers defined for every input.
#pragma once

#include <cstdint>
#include <limits>

// Truncates `value` towards zero.
//   returns  INT32_MIN for NaN and for values whose integer part is outside int32, as the processor's conversion
//            does; a bare cast would be undefined there
constexpr int32_t truncate_to_int32(float value) {
  const bool fits = value > -0x1p31F && value < 0x1p31F;
  return fits ? static_cast<int32_t>(value) : std::numeric_limits<int32_t>::min();
}
constexpr int32_t truncate_to_int32(double value) {
  const bool fits = value > -0x1p31 && value < 0x1p31;
  return fits ? static_cast<int32_t>(value) : std::numeric_limits<int32_t>::min();
}
