// MIT License.
#include "hosts/measures/speech.h"

#include <gtest/gtest.h>

#include "tests/hosts/measures/tones.h"

namespace {

// A vowel and a sibilant, of half a second each.
std::vector<float> syllable(double vowel, double sibilant) {
  return tones::joined(tones::sine(500.0, 0.5, vowel), tones::sine(6000.0, 0.5, sibilant));
}

TEST(Sibilance, IsTheVoicesBalanceWhateverTheLevel) {
  const auto voice = syllable(0.5, 0.1);
  EXPECT_NEAR(measures::sibilance_balance_db(voice, tones::scaled(voice, 0.1)), 0.0, 0.01);
  EXPECT_NEAR(measures::sibilance_balance_db(voice, syllable(0.5, 0.2)), 6.02, 0.05);
  EXPECT_NEAR(measures::sibilance_balance_db(voice, syllable(0.5, 0.05)), -6.02, 0.05);
}

TEST(Sibilance, NeedsVowelsAndSibilants) {
  const auto vowel = tones::sine(500.0, 1.0);
  EXPECT_TRUE(std::isnan(measures::sibilance_balance_db(vowel, vowel)));
  EXPECT_TRUE(std::isnan(measures::sibilance_balance_db(syllable(0.5, 0.1), tones::silence(1.0))));
}

std::vector<float> speech_with_pause(double level_in_pause) {
  const auto speech = tones::sine(500.0, 0.5);
  return tones::joined(tones::joined(speech, tones::sine(500.0, 0.3, level_in_pause)), speech);
}

TEST(Pauses, AreMeasuredBesideSpeech) {
  const auto voice = speech_with_pause(0.0);
  EXPECT_NEAR(measures::pause_level_db(voice, tones::scaled(speech_with_pause(0.5), 0.1)), 0.0, 0.1);
  EXPECT_NEAR(measures::pause_level_db(voice, speech_with_pause(0.05)), -20.0, 0.1);
  EXPECT_LT(measures::pause_level_db(voice, voice), -100.0);
}

// A release of 20 ms is over when the pause begins to count.
TEST(Pauses, LeaveOutTheEdges) {
  const auto voice = speech_with_pause(0.0);
  auto released = voice;
  const auto end = released.begin() + static_cast<std::ptrdiff_t>(tones::samples_of(0.5));
  std::fill(end, end + static_cast<std::ptrdiff_t>(tones::samples_of(0.02)), 0.3F);
  EXPECT_LT(measures::pause_level_db(voice, released), -100.0);
  std::fill(end, end + static_cast<std::ptrdiff_t>(tones::samples_of(0.05)), 0.3F);
  EXPECT_GT(measures::pause_level_db(voice, released), -15.0);
}

TEST(Pauses, AreInsideOfSpeech) {
  const auto voice = tones::joined(tones::joined(tones::silence(0.3), tones::sine(500.0, 0.5)), tones::silence(0.3));
  EXPECT_TRUE(std::isnan(measures::pause_level_db(voice, voice)));
}

TEST(EnvelopeCorrelation, IsOneForTheVoiceAndAboutZeroForNoise) {
  const auto voice = tones::tremolo(noise(tones::samples_of(3.0), 0.3F), 3.0, 0.9);
  EXPECT_NEAR(measures::envelope_correlation(voice, tones::scaled(voice, 0.1)), 1.0, 1e-6);
  EXPECT_NEAR(measures::envelope_correlation(voice, noise(voice.size(), 0.3F, 7)), 0.0, 0.1);
  // Another noise with the same tremolo.
  EXPECT_GT(measures::envelope_correlation(voice, tones::tremolo(noise(voice.size(), 0.3F, 7), 3.0, 0.9)), 0.5);
}

}  // namespace
