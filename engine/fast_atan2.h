// MIT License. Fast four-quadrant arc tangent, within 0.005 rad, of four points at once.
#pragma once

#include "dsp/lanes.h"

// The angle of (x, y) in radians, -pi to pi, within 0.005 of the true one.
//   formula   atan(z) ~ z / (1 + 0.28 z^2) for |z| < 1, and pi/2 - atan(1/z) beyond (a common rational approximation)
//   zero      x = 0 gives pi/2, 0 or -pi/2 by the sign of y
//   lanes     four neighbouring bins. Selections instead of branches, as phases jump from bin to bin and half of the
//             branches would be mispredicted
inline float4 fast_atan2(float4 y, float4 x) {
  constexpr float pi = 3.1415927F;
  constexpr float half_pi = 1.5707964F;
  const float4 z = y / x;
  const int4 steep = magnitude(z) >= 1.0F;
  const float4 quotient = z / (steep ? z * z + 0.28F : z * z * 0.28F + 1.0F);
  const float4 angle = steep ? half_pi - quotient : quotient;
  const int4 above = y >= 0.0F;
  const float4 turned = (above & ~steep) ? angle + pi : angle - pi;
  const int4 stays = steep ? above : x >= 0.0F;
  const float4 upright = y > 0.0F ? splat(half_pi) : y == 0.0F ? float4{} : splat(-half_pi);
  return x == 0.0F ? upright : stays ? angle : turned;
}
