// MIT License. Cosine and sine of four angles at once, to single precision.
#pragma once

#include "dsp/lanes.h"

struct cosine_and_sine {
  float4 cosine;
  float4 sine;
};

// Cosine and sine of angles in radians, -4 to 4, each within 2e-7. NaN gives NaN.
//   formula   the angle less the nearest multiple of pi/2, of which the first part has so few bits that its multiples
//             are exact (W. J. Cody and W. Waite, "Software Manual for the Elementary Functions"); then the Taylor
//             series up to the eighth and ninth power, whose next terms are below 3e-8 within pi/4
inline cosine_and_sine fast_cosine_and_sine(float4 angle) {
  constexpr float quarters_per_radian = 0.63661977F;
  constexpr float quarter_high = 1.5703125F;
  constexpr float quarter_low = 4.8382679E-4F;
  constexpr float rounder = 12582912.0F;  // 1.5 * 2^23: what is added to it is rounded, and in its lowest bits
  const float4 rounded = angle * quarters_per_radian + rounder;
  const int4 quarters = reinterpret_cast<int4>(rounded);
  const float4 multiple = rounded - rounder;
  const float4 r = (angle - multiple * quarter_high) - multiple * quarter_low;

  const float4 s = r * r;
  const float4 odd = 1.0F / 6.0F - s * (1.0F / 120.0F - s * (1.0F / 5040.0F - s * (1.0F / 362880.0F)));
  const float4 even = 0.5F - s * (1.0F / 24.0F - s * (1.0F / 720.0F - s * (1.0F / 40320.0F)));
  const float4 sine = r - r * s * odd;
  const float4 cosine = 1.0F - s * even;

  // Each quarter turn exchanges the two; cosines are negative in quarters 1 and 2, sines in 2 and 3.
  const int4 exchanged = (quarters & 1) != 0;
  const int4 cosine_sign = ((quarters + 1) & 2) << 30;
  const int4 sine_sign = (quarters & 2) << 30;
  const float4 x = exchanged ? sine : cosine;
  const float4 y = exchanged ? cosine : sine;
  return {reinterpret_cast<float4>(reinterpret_cast<int4>(x) ^ cosine_sign),
          reinterpret_cast<float4>(reinterpret_cast<int4>(y) ^ sine_sign)};
}
