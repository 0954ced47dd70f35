// MIT License.
#include "hosts/measures/estoi.h"

#include <gtest/gtest.h>

#include "tests/hosts/measures/demo_voice.h"
#include "tests/hosts/measures/tones.h"

namespace {

using measures::estoi_parts::segment;

const std::vector<float>& voice() {
  static const auto samples = demo_voice();
  return samples;
}

std::vector<float> voice_in_noise(double noise_level) {
  return tones::sum(voice(), noise(voice().size(), static_cast<float>(noise_level)));
}

// Worked by hand. The rows have a mean of 2; taken off, (-1 0 1) and (1 -1 0) remain, over the root of 2. Of the
// columns then (-1 1), (1 -1) and (1 -1) remain, over the root of 2.
TEST(Estoi, NormalisesRowsThenColumns) {
  segment levels{2, 3, {1, 2, 3, 3, 1, 2}};
  measures::estoi_parts::normalise(&levels);
  const double r = std::sqrt(0.5);
  const std::vector<double> expected = {-r, r, r, r, -r, -r};
  for (std::size_t i = 0; i < expected.size(); ++i) EXPECT_NEAR(levels.values[i], expected[i], 1e-12) << i;
}

// The second row of the other segment becomes (1 0 -1): its middle column has no pattern, the others are alike.
TEST(Estoi, IsTheMeanProductOfColumns) {
  segment a{2, 3, {1, 2, 3, 3, 1, 2}};
  segment b{2, 3, {10, 20, 30, 3, 2, 1}};
  measures::estoi_parts::normalise(&a);
  measures::estoi_parts::normalise(&b);
  EXPECT_NEAR(measures::estoi_parts::mean_product(a, b), 2.0 / 3.0, 1e-12);
  EXPECT_NEAR(measures::estoi_parts::mean_product(a, a), 1.0, 1e-12);
}

TEST(Estoi, LeavesOutFrames40DbBelowTheLoudest) {
  const auto loud = noise(tones::samples_of(1.0), 0.5F);
  for (const double db : {-35.0, -45.0}) {
    auto clean = tones::joined(loud, tones::scaled(loud, std::pow(10.0, db / 20.0)));
    auto processed = clean;
    measures::estoi_parts::remove_silence(&clean, &processed);
    EXPECT_EQ(clean, processed);
    EXPECT_NEAR(static_cast<double>(clean.size()) / measures::rate_hz, db > -40.0 ? 2.0 : 1.0, 0.02) << db;
  }
}

TEST(Estoi, IsOneForTheVoiceAtAnyLevel) {
  EXPECT_NEAR(measures::estoi(voice(), voice()), 1.0, 1e-6);
  EXPECT_NEAR(measures::estoi(voice(), tones::scaled(voice(), 0.05)), 1.0, 1e-5);
}

TEST(Estoi, IsAboutZeroForNoiseAndOtherSpeech) {
  EXPECT_NEAR(measures::estoi(voice(), noise(voice().size())), 0.0, 0.05);
  const std::vector<float> reversed(voice().rbegin(), voice().rend());
  EXPECT_NEAR(measures::estoi(voice(), reversed), 0.0, 0.1);
}

TEST(Estoi, FallsAsNoiseRises) {
  double last = 1.0;
  for (const double level : {0.03, 0.1, 0.3, 1.0}) {
    const double value = measures::estoi(voice(), voice_in_noise(level));
    EXPECT_LT(value, last - 0.05) << level;
    last = value;
  }
  EXPECT_GT(measures::estoi(voice(), voice_in_noise(0.003)), 0.95);
}

// The expected value is that of a second, plain calculation in double precision, with sox as its resampler.
TEST(Estoi, AgreesWithAnotherCalculation) {
  EXPECT_NEAR(measures::estoi(voice(), voice_in_noise(0.1)), 0.7574, 0.001);
}

TEST(Estoi, NeedsASegment) {
  const auto click = tones::sine(1000.0, 0.3);
  EXPECT_TRUE(std::isnan(measures::estoi(click, click)));
}

}  // namespace
