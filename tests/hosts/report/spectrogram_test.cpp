// MIT License.
#include "hosts/report/spectrogram.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

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

TEST(SpectrogramMarks, AreWholeSecondsWithRoomBetweenThem) {
  for (const auto& [seconds, count, last] :
       {std::tuple{0.4, 0U, ""}, {6.8, 6U, "6 s"}, {9.0, 4U, "8 s"}, {75.0, 7U, "1:10"}, {600.0, 4U, "8:00"}}) {
    const auto marks = time_marks(seconds);
    ASSERT_EQ(marks.size(), count) << seconds;
    for (const auto& mark : marks) EXPECT_LT(mark.share, 0.95);
    if (count > 0) {
      EXPECT_EQ(marks.back().label, last);
    }
  }
  EXPECT_NEAR(time_marks(8.0)[1].share, 0.25, 1e-9);
  const auto octaves = frequency_marks();
  EXPECT_EQ(octaves.front().label, "100 Hz");
  EXPECT_NEAR(octaves[0].share, std::log(100.0 / 60.0) / std::log(16000.0 / 60.0), 1e-9);
}

}  // namespace
