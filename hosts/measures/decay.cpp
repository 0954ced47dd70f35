// MIT License. How long a sound rings on.
#include "hosts/measures/decay.h"

#include <limits>
#include <vector>

#include "hosts/measures/spectrum.h"

namespace measures {

double reverb_time_seconds(mono_view signal, std::size_t from) {
  constexpr double nothing = std::numeric_limits<double>::quiet_NaN();
  constexpr double begin_db = -5.0;
  constexpr double end_db = -25.0;
  if (from >= signal.size()) return nothing;
  std::vector<double> left(signal.size() - from);  // energy from each moment on
  double sum = 0.0;
  for (std::size_t i = left.size(); i-- > 0;) {
    const auto x = static_cast<double>(signal[from + i]);
    sum += x * x;
    left[i] = sum;
  }
  if (sum <= 0.0) return nothing;

  // The line of least squares through the curve in dB.
  double n = 0.0;
  double t = 0.0;
  double tt = 0.0;
  double y = 0.0;
  double ty = 0.0;
  double crossing_seconds = -1.0;  // of the lower level
  for (std::size_t i = 0; i < left.size(); ++i) {
    const double level_db = decibels(left[i] / sum);
    const double seconds = static_cast<double>(i) / rate_hz;
    if (level_db > begin_db) continue;
    if (level_db < end_db) {
      crossing_seconds = seconds;
      break;
    }
    n += 1.0;
    t += seconds;
    tt += seconds * seconds;
    y += level_db;
    ty += seconds * level_db;
  }
  // What doesn't decay has nothing left either at the end of the signal.
  const double length = static_cast<double>(left.size()) / rate_hz;
  const double determinant = n * tt - t * t;
  if (crossing_seconds < 0.0 || crossing_seconds > 0.9 * length) return nothing;
  if (determinant <= 0.0) return 0.0;                      // it falls by all of it from one sample to the next
  const double slope_db = (n * ty - t * y) / determinant;  // per second
  return -60.0 / slope_db;
}

}  // namespace measures
