// MIT License.
#include "engine/band_filters.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

// clang-format off
// Centre frequencies: 100 Hz apart up to 600 Hz, from there a factor of 1.2, and the air band alone at the top.
constexpr std::array<float, filter_bank_bands> band_frequency_hz = {
    100.0F,     200.0F,     300.0F,     400.0F,     500.0F,      // 0
    600.0F,     720.0F,     864.0F,     1036.8F,    1244.16F,    // 5
    1492.992F,  1791.5905F, 2149.9084F, 2579.8901F, 3095.8682F,  // 10
    3715.0417F, 4458.0503F, 5349.6602F, 6419.5923F, 7703.5107F,  // 15
    9244.2129F, 11093.056F, 13311.667F, 15974.0F,   21000.0F,    // 20
};
// clang-format on

constexpr int32_t last_rising_q_band = 21;  // forward and backward: the bands above are wide, to catch all of the air
constexpr float upper_q = 2.0F;             // their quality

// The quality rises with the fourth root of the band number, so that low bands stay wide enough to speak.
float band_quality(band_filter filter, int32_t band) {
  const double root = std::pow(0.04 * band, 0.25);
  if (filter == band_filter::bandpass_twice) return static_cast<float>(5.0 * root + 1.0);
  return band <= last_rising_q_band ? static_cast<float>(10.0 * root + 0.8) : upper_q;
}

}  // namespace

bandpass_coefficients bandpass_of(float frequency, float q, float sample_rate) {
  const double limited = std::max(10.0, std::min<double>(frequency, sample_rate * 0.5 - 10.0));
  const double w = limited * 2.0 * std::numbers::pi / sample_rate;
  const double alpha = std::sin(w) / (2.0 * q);
  const double d = 1.0 / (alpha + 1.0);
  return {static_cast<float>(alpha * d), static_cast<float>(-alpha * d), static_cast<float>(-2.0 * std::cos(w) * d),
          static_cast<float>((1.0 - alpha) * d)};
}

filter_bank_coefficients filter_bank_coefficients_of(float sample_rate) {
  filter_bank_coefficients bank;
  for (int32_t band = 0; band < filter_bank_bands; ++band) {
    const auto i = static_cast<size_t>(band);
    bank.forward_backward[i] =
        bandpass_of(band_frequency_hz[i], band_quality(band_filter::bandpass_forward_backward, band), sample_rate);
    bank.twice[i] = bandpass_of(band_frequency_hz[i], band_quality(band_filter::bandpass_twice, band), sample_rate);
  }
  return bank;
}
