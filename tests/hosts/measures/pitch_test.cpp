// MIT License.
#include "hosts/measures/pitch.h"

#include <gtest/gtest.h>

#include "tests/hosts/measures/demo_voice.h"
#include "tests/hosts/measures/tones.h"

namespace {

constexpr double c3_hz = 130.8128;

TEST(Tuning, IsTheDistanceFromTheNearestHarmonic) {
  for (const double cents : {0.0, 7.0, -3.0}) {
    const auto tone = tones::harmonic_tone(tones::raised(c3_hz, cents), 3.0);
    EXPECT_NEAR(measures::tuning_error_cents(tone, {c3_hz}), std::abs(cents), 0.3) << cents;
  }
}

TEST(Tuning, OfADetunedPairIsThatOfItsParts) {
  const auto pair = tones::sum(tones::harmonic_tone(tones::raised(2 * c3_hz, 8.0), 4.0),
                               tones::harmonic_tone(tones::raised(2 * c3_hz, -8.0), 4.0));
  EXPECT_NEAR(measures::tuning_error_cents(pair, {2 * c3_hz}), 8.0, 0.8);
}

TEST(Tuning, CountsPartialsByPower) {
  const auto tone = tones::sum(tones::sine(c3_hz, 3.0, 0.3), tones::sine(tones::raised(2 * c3_hz, 20.0), 3.0, 0.1));
  EXPECT_NEAR(measures::tuning_error_cents(tone, {c3_hz}), 2.0, 0.2);
}

TEST(Tuning, IgnoresTheSidebandsOfATremolo) {
  EXPECT_LT(measures::tuning_error_cents(tones::tremolo(tones::harmonic_tone(c3_hz, 3.0), 5.5, 0.5), {c3_hz}), 0.5);
}

TEST(Tuning, TakesTheHarmonicsOfAllKeys) {
  const double g3_hz = tones::raised(c3_hz, 700.0);
  const auto chord = tones::sum(tones::harmonic_tone(c3_hz, 3.0), tones::harmonic_tone(g3_hz, 3.0));
  EXPECT_LT(measures::tuning_error_cents(chord, {c3_hz, g3_hz}), 0.5);
  EXPECT_GT(measures::tuning_error_cents(chord, {c3_hz}), 50.0);
}

TEST(Modulation, OfTwoSinesIsTheirBeat) {
  const auto beat = measures::modulation_of(tones::sum(tones::sine(440.0, 4.0, 0.3), tones::sine(443.0, 4.0, 0.3)));
  EXPECT_NEAR(beat.rate_hz, 3.0, 0.05);
  EXPECT_NEAR(beat.depth, 1.0, 0.02);
}

TEST(Modulation, OfATremoloIsItsRateAndHalfItsDepth) {
  const auto found = measures::modulation_of(tones::tremolo(tones::sine(440.0, 4.0), 4.0, 0.5));
  EXPECT_NEAR(found.rate_hz, 4.0, 0.05);
  EXPECT_NEAR(found.depth, 0.25, 0.02);
}

TEST(Modulation, OfASteadyToneIsNone) {
  EXPECT_TRUE(std::isnan(measures::modulation_of(tones::harmonic_tone(c3_hz, 4.0)).rate_hz));
  EXPECT_TRUE(std::isnan(measures::modulation_of(tones::silence(4.0)).rate_hz));
}

TEST(Fundamental, IsThePeriodOfVoicedSoundsAlone) {
  EXPECT_NEAR(measures::fundamental_hz(tones::harmonic_tone(150.0, 0.05)), 150.0, 1.0);
  EXPECT_EQ(measures::fundamental_hz(noise(2205)), 0.0);
  EXPECT_EQ(measures::fundamental_hz(tones::silence(0.05)), 0.0);
}

TEST(ChordShare, TellsTheChordFromTheVoice) {
  const auto voice = demo_voice();
  const auto track = measures::pitch_track_of(voice);
  const std::vector<double> chord_hz = {c3_hz, tones::raised(c3_hz, 400.0), tones::raised(c3_hz, 700.0)};
  const double seconds = static_cast<double>(voice.size()) / measures::rate_hz;
  auto chord = tones::silence(seconds);
  for (const double hz : chord_hz) chord = tones::sum(chord, tones::harmonic_tone(hz, seconds));
  EXPECT_GT(measures::chord_share(track, chord, chord_hz), 0.95);
  EXPECT_LT(measures::chord_share(track, voice, chord_hz), 0.1);
  EXPECT_TRUE(std::isnan(measures::chord_share(track, tones::silence(seconds), chord_hz)));
}

}  // namespace
