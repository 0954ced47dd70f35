// MIT License.
#include "hosts/measures/tone.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "hosts/measures/decay.h"
#include "tests/hosts/measures/tones.h"

namespace {

TEST(Centroid, IsTheCentreOfPower) {
  EXPECT_NEAR(measures::spectral_centroid_hz(tones::sum(tones::sine(1000.0, 2.0), tones::sine(3000.0, 2.0))), 2000, 5);
  EXPECT_NEAR(measures::spectral_centroid_hz(tones::sine(440.0, 2.0)), 440.0, 5.0);
  EXPECT_TRUE(std::isnan(measures::spectral_centroid_hz(tones::silence(1.0))));
}

TEST(StereoCorrelation, TellsMonoFromWide) {
  const auto a = noise(44100);
  EXPECT_NEAR(measures::stereo_correlation({a, tones::scaled(a, 0.5)}), 1.0, 1e-6);
  EXPECT_NEAR(measures::stereo_correlation({a, tones::scaled(a, -1.0)}), -1.0, 1e-6);
  EXPECT_NEAR(measures::stereo_correlation({a, noise(44100, 1.0F, 5)}), 0.0, 0.02);
  EXPECT_EQ(measures::stereo_correlation({tones::silence(0.1), tones::silence(0.1)}), 1.0);
}

TEST(ReverbTime, IsThatOfAnExponentialDecay) {
  for (const double seconds : {0.4, 1.5}) {
    auto tail = noise(tones::samples_of(2.0));
    for (std::size_t i = 0; i < tail.size(); ++i) {
      tail[i] *= static_cast<float>(std::pow(10.0, -3.0 * static_cast<double>(i) / measures::rate_hz / seconds));
    }
    const auto before = noise(tones::samples_of(0.5));
    EXPECT_NEAR(measures::reverb_time_seconds(tones::joined(before, tail), before.size()), seconds, 0.03 * seconds);
  }
}

TEST(ReverbTime, IsUnknownOfWhatDoesntDecay) {
  EXPECT_TRUE(std::isnan(measures::reverb_time_seconds(tones::sine(440.0, 2.0), 0)));
  EXPECT_TRUE(std::isnan(measures::reverb_time_seconds(tones::silence(2.0), 0)));
}

TEST(Shape, IsIndependentOfLevelAndFollowsColour) {
  const auto shape = measures::third_octave_shape_db(noise(88200, 0.5F));
  const auto softer = measures::third_octave_shape_db(noise(88200, 0.05F));
  ASSERT_EQ(shape.size(), 25U);
  for (std::size_t i = 0; i < shape.size(); ++i) EXPECT_NEAR(shape[i], softer[i], 0.01);
  // White noise rises by 1 dB a third of an octave, 3 dB an octave.
  EXPECT_NEAR(shape[24] - shape[12], 12.0, 1.0);
}

TEST(Chroma, FindsTheNotes) {
  const auto chroma = measures::chroma_db(tones::sum(tones::sine(440.0, 2.0, 0.4), tones::sine(523.25, 2.0, 0.2)));
  for (std::size_t note = 0; note < 12; ++note) {
    EXPECT_NEAR(chroma[note], note == 9 ? 0.0 : note == 0 ? -6.0 : -30.0, 0.3) << note;
  }
}

TEST(ModulationShape, IsTheDepthAtItsRate) {
  const auto shape = measures::modulation_shape_db(tones::tremolo(tones::sine(440.0, 4.0), 4.0, 0.5));
  for (std::size_t band = 0; band < shape.size(); ++band) {
    EXPECT_NEAR(shape[band], band == 2 ? -6.0 : -40.0, band == 2 ? 0.5 : 8.0) << band;
  }
}

measures::fingerprint flat_print() {
  const std::vector<double> shape(25, 0.0);
  return {shape, shape, std::vector<double>(12, 0.0), std::vector<double>(6, -40.0), -40.0, -20.0, 1.0};
}

TEST(Distance, IsInDbOverAllBands) {
  const auto a = flat_print();
  auto b = a;
  EXPECT_EQ(measures::distance_db(a, b), 0.0);
  for (auto* shape : {&b.speech_shape_db, &b.vowel_shape_db}) std::fill(shape->begin(), shape->end(), 2.0);
  EXPECT_NEAR(measures::distance_db(a, b), 2.0, 1e-9);
  EXPECT_EQ(measures::distance_db(a, b), measures::distance_db(b, a));
}

TEST(Distance, TakesInPitchesMovementTailsAndWidth) {
  const auto a = flat_print();
  auto other = a;
  std::fill(other.chroma_db.begin(), other.chroma_db.end(), -4.0);
  EXPECT_NEAR(measures::distance_db(a, other), 2.0, 1e-9);
  other = a;
  std::fill(other.modulation_shape_db.begin(), other.modulation_shape_db.end(), -36.0);
  EXPECT_NEAR(measures::distance_db(a, other), 2.0, 1e-9);
  other = a;
  other.pause_level_db = -20.0;
  EXPECT_NEAR(measures::distance_db(a, other), 2.0, 1e-9);
  other = a;
  other.stereo_correlation = 0.0;
  EXPECT_NEAR(measures::distance_db(a, other), 3.0, 1e-9);
}

}  // namespace
