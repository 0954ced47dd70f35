// MIT License. A signal at another rate.
#include "hosts/measures/resampled.h"

#include <soxr.h>

#include <cmath>
#include <stdexcept>
#include <string>

namespace measures {

std::vector<float> resampled(mono_view signal, double to_hz) {
  std::vector<float> out(static_cast<std::size_t>(std::ceil(static_cast<double>(signal.size()) * to_hz / rate_hz)) + 1);
  std::size_t made = 0;
  const auto quality = soxr_quality_spec(SOXR_HQ, 0);
  const soxr_error_t error = soxr_oneshot(rate_hz, to_hz, 1, signal.data(), signal.size(), nullptr, out.data(),
                                          out.size(), &made, nullptr, &quality, nullptr);
  if (error != nullptr) throw std::runtime_error(std::string("the rate cannot be converted: ") + error);
  out.resize(made);
  return out;
}

}  // namespace measures
