// MIT License.
#include "hosts/report/spectrogram.h"

#include <gtest/gtest.h>

#include <cmath>

#include "tests/hosts/measures/tones.h"

namespace {

// The luminance of each colour, by IEC 61966-2-1, and the lightness that it gives, by CIE 1976.
TEST(SpectrogramColours, GetEvenlyLighter) {
  const auto linear = [](double x) { return x <= 0.04045 ? x / 12.92 : std::pow((x + 0.055) / 1.055, 2.4); };
  double last = -5.0;
  for (int step = 0; step <= 20; ++step) {
    const rgb colour = colour_of_level(step / 20.0);
    const double y = 0.2126 * linear(colour.red) + 0.7152 * linear(colour.green) + 0.0722 * linear(colour.blue);
    const double lightness = y > 0.008856 ? 116.0 * std::cbrt(y) - 16.0 : 903.3 * y;
    if (step > 0) {
      EXPECT_NEAR(lightness - last, 4.8, 2.4) << step;
    }
    last = lightness;
  }
  EXPECT_GT(last, 90.0);
}

TEST(Spectrogram, HasAnAxisOfEqualOctaves) {
  const spectrogram_size size{760, 300};
  EXPECT_NEAR(row_of_hz(60.0, size), 0.0, 1e-9);
  EXPECT_NEAR(row_of_hz(16000.0, size), 300.0, 1e-9);
  EXPECT_NEAR(row_of_hz(400.0, size) - row_of_hz(200.0, size), row_of_hz(8000.0, size) - row_of_hz(4000.0, size), 1e-9);
}

}  // namespace
