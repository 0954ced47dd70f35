// MIT License.
#include "hosts/measures/loudness.h"

#include <gtest/gtest.h>

#include "tests/hosts/measures/tones.h"

namespace {

measures::stereo both(const std::vector<float>& channel) {
  return {channel, channel};
}

double amplitude_of(double db) {
  return std::pow(10.0, db / 20.0);
}

// The reference tone of EBU Tech 3341: its level in dBFS is its loudness.
TEST(Loudness, OfA997HzSineIsItsLevel) {
  for (const double db : {-23.0, -40.0}) {
    EXPECT_NEAR(measures::loudness_lufs(both(tones::sine(997.0, 5.0, amplitude_of(db)))), db, 0.1);
  }
  EXPECT_TRUE(std::isinf(measures::loudness_lufs(both(tones::silence(1.0)))));
}

// Samples of a quarter of the rate that straddle the peaks: 3 dB below them.
TEST(Loudness, TruePeakIsThatBetweenSamples) {
  const auto tone = tones::sine(measures::rate_hz / 4.0, 1.0, 0.5, std::numbers::pi / 4.0);
  EXPECT_NEAR(measures::true_peak_db({tones::silence(1.0), tone}), -6.02, 0.4);
}

TEST(Loudness, HighestTruePeakIsThatOfTheLoudest) {
  const auto loud = both(tones::sine(1000.0, 1.0, amplitude_of(-2.0)));
  const auto soft = both(tones::sine(1000.0, 1.0, amplitude_of(-20.0)));
  EXPECT_NEAR(measures::highest_true_peak_db({&soft, &loud, &soft}), -2.0, 0.1);
}

}  // namespace
