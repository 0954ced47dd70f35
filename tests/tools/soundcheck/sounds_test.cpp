// MIT License. The sounds themselves, as the module plays them, and what is generated from their tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>

#include "hosts/effect/programs.h"
#include "hosts/effect/sounds.h"
#include "tools/soundcheck/jobs.h"
#include "tools/soundcheck/measures/loudness.h"
#include "tools/soundcheck/measures/pitch.h"
#include "tools/soundcheck/rendering.h"
#include "tools/soundcheck/sound_tables.h"
#include "tools/soundcheck/sounds_page.h"
#include "tools/soundcheck/targets.h"
#include "tools/soundcheck/vowel.h"

namespace {

std::vector<float> vowel(double seconds) {
  vowel_voice voice;
  voice.vibrato_cents = 0.0;
  voice.seconds = seconds;
  auto samples = sung_vowel(voice);
  for (float& x : samples) x *= 0.5F;
  return samples;
}

struct brief_figures {
  double loudness_lufs;
  double true_peak_db;
  double tuning_cents;
};

// A second of vowel on the chord, and two on its lowest key, after the filters and followers have settled.
brief_figures figures_of(const sound& chosen, const sound_row& row) {
  static const auto short_vowel = vowel(1.0);
  static const auto long_vowel = vowel(2.3);
  program content = fresh_program(chosen);
  const auto chord = render_voice(KESREL_MODULE, content, short_vowel, 0.0);
  content.keys = {12};
  const auto single = measures::mono_of(render_voice(KESREL_MODULE, content, long_vowel, 0.0));
  const measures::mono_view settled = measures::mono_view(single).subspan(measures::rate_hz / 4, 2 * measures::rate_hz);
  return {measures::loudness_lufs(chord), measures::true_peak_db(chord),
          measures::tuning_error_cents(settled, fundamentals_of(row, {lowest_note(chosen, false) + 12}))};
}

// The thorough check of all sounds is `./dev sounds`. A sound without a note is still being made.
TEST(Sounds, AreHeardBalancedWithoutClippingAndInTune) {
  const auto tables = read_sound_tables(KESREL_RESOURCES);
  std::vector<sound> finished;
  for (const auto& each : known_sounds()) {
    if (tables.rows.contains(each.number) && tables.notes.contains(each.number)) finished.push_back(each);
  }
  if (finished.empty()) GTEST_SKIP() << "no sound has a note in sound_notes.csv";

  std::vector<brief_figures> figures(finished.size());
  for_each_job(finished.size(), 0,
               [&](std::size_t i) { figures[i] = figures_of(finished[i], tables.rows.at(finished[i].number)); });
  std::vector<double> all;
  for (const auto& each : figures) all.push_back(each.loudness_lufs);
  const double median = median_of(all);
  for (std::size_t i = 0; i < finished.size(); ++i) {
    SCOPED_TRACE(std::to_string(finished[i].number) + " " + finished[i].name);
    EXPECT_GT(figures[i].loudness_lufs, silence_lufs);
    EXPECT_NEAR(figures[i].loudness_lufs, median, loudness_range_lu);
    EXPECT_LT(figures[i].true_peak_db, highest_true_peak_db);
    if (!tables.note(finished[i].number).detuned) {
      EXPECT_LT(figures[i].tuning_cents, largest_tuning_cents);
    }
  }
}

TEST(Sounds, RenderAlikeTwice) {
  const auto& chosen = find_sound(known_sounds(), "Modern Chord Coder");  // it draws random numbers
  const auto voice = vowel(0.2);
  const auto once = render_voice(KESREL_MODULE, fresh_program(chosen), voice, 0.1);
  const auto twice = render_voice(KESREL_MODULE, fresh_program(chosen), voice, 0.1);
  EXPECT_EQ(once.left.size(), static_cast<std::size_t>(0.3 * measures::rate_hz));
  EXPECT_EQ(once.left, twice.left);
  EXPECT_EQ(once.right, twice.right);
}

// The centre of a signal's energy, in samples.
double centre_of(const std::vector<float>& signal) {
  double moment = 0.0;
  double sum = 0.0;
  for (std::size_t i = 0; i < signal.size(); ++i) {
    const double power = static_cast<double>(signal[i]) * static_cast<double>(signal[i]);
    moment += power * static_cast<double>(i);
    sum += power;
  }
  return moment / sum;
}

TEST(Sounds, AreAlignedWithTheVoice) {
  const std::vector<float> gap(measures::rate_hz / 4, 0.0F);
  std::vector<float> voice = gap;
  const auto sung = vowel(0.2);
  voice.insert(voice.end(), sung.begin(), sung.end());
  voice.insert(voice.end(), gap.begin(), gap.end());
  const auto take = render_voice(KESREL_MODULE, fresh_program(find_sound(known_sounds(), "Retro")), voice, 0.0);
  EXPECT_NEAR(centre_of(take.left), centre_of(voice), 256.0);
}

TEST(GeneratedFromSounds, ThePageIsCurrent) {
  std::ifstream file(KESREL_DOCS "/sounds.md");
  const std::string committed{std::istreambuf_iterator<char>(file), {}};
  EXPECT_EQ(committed, sounds_page(read_sound_tables(KESREL_RESOURCES))) << "please run ./dev resources";
}

TEST(GeneratedFromSounds, TheVowelIsCurrent) {
  const auto committed = read_voice(KESREL_RESOURCES "/demo/vowel.flac", 0.0);
  const auto made = sung_vowel({});
  ASSERT_EQ(committed.size(), made.size());
  float largest = 0.0F;
  for (std::size_t i = 0; i < made.size(); ++i) largest = std::max(largest, std::abs(committed[i] - made[i]));
  EXPECT_LT(largest, 1e-4F);  // 16 bits, scaled up from -3 dBFS
}

}  // namespace
