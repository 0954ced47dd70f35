// MIT License. An arc tangent for algorithms whose time goes elsewhere and whose ear is not that fine.
#pragma once

#include <cmath>

// The angle of (x, y) in radians, -pi to pi, within 0.005 of the true one.
//   formula   atan(z) ~ z / (1 + 0.28 z^2) for |z| < 1, and pi/2 - atan(1/z) beyond (a common rational approximation)
//   zero      x = 0 gives pi/2, 0 or -pi/2 by the sign of y
inline float fast_atan2(float y, float x) {
  constexpr float pi = 3.1415927F;
  constexpr float half_pi = 1.5707964F;
  if (x == 0.0F) {
    if (y > 0.0F) return half_pi;
    return y == 0.0F ? 0.0F : -half_pi;
  }
  const float z = y / x;
  if (std::fabs(z) >= 1.0F) {
    const float t = half_pi - z / (z * z + 0.28F);
    return y >= 0.0F ? t : t - pi;
  }
  const float t = z / (z * z * 0.28F + 1.0F);
  if (x >= 0.0F) return t;
  return y >= 0.0F ? t + pi : t - pi;
}
