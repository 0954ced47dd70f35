// MIT License. Options, targets and tables of kesrel-soundcheck.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "hosts/effect/text.h"
#include "tools/soundcheck/names.h"
#include "tools/soundcheck/options.h"
#include "tools/soundcheck/report.h"
#include "tools/soundcheck/table.h"
#include "tools/soundcheck/targets.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(SoundcheckOptions, ListsOfNumbers) {
  EXPECT_THAT(parse_numbers("5-7,0,6", 58), ElementsAre(0, 5, 6, 7));
  for (const char* wrong : {"", "58", "3-1", "1,,2", "-1", "x", "1-", "0-58"}) {
    EXPECT_THROW(parse_numbers(wrong, 58), failure) << wrong;
  }
}

// --- Targets ---

// A clear sound that meets all targets.
sound_figures good_sound(int number) {
  sound_figures sound{};
  sound.number = number;
  sound.name = "Good";
  const double no_figure = std::numeric_limits<double>::quiet_NaN();
  sound.voices = {{"demo", -20.0, -3.0, -22.0, 1500.0, 0.8, 0.7, 0.9, 1.0, -42.0, -25.0, 1.0},
                  {"vowel", -16.0, -2.0, -17.0, 1500.0, no_figure, no_figure, no_figure, no_figure, no_figure,
                   no_figure, no_figure}};
  sound.tuning_cents = 2.0;
  sound.nearest = number + 1;
  sound.nearest_db = 4.0;
  return sound;
}

class Targets : public testing::Test {
 protected:
  // The targets missed by five sounds, with `changed` in the middle and good ones around it.
  std::vector<std::string> misses_with(const sound_figures& changed) const {
    std::vector<sound_figures> sounds;
    for (int number = 0; number < 5; ++number) sounds.push_back(number == 2 ? changed : good_sound(number));
    return misses_of_sounds(sounds, tables_);
  }

  sound_figures changed_ = good_sound(2);
  sound_tables tables_{{}, {{2, {sound_kind::clear, false, "", ""}}}};
};

TEST_F(Targets, AreMetByAGoodSound) {
  EXPECT_THAT(misses_with(changed_), IsEmpty());
}

TEST_F(Targets, LimitLoudnessWithEachVoice) {
  changed_.voices[0].loudness_lufs = -23.1;
  changed_.voices[1].loudness_lufs = -12.9;
  EXPECT_THAT(misses_with(changed_), ElementsAre("sound 2 Good: loudness with voice demo -23.1 is below -23.0",
                                                 "sound 2 Good: loudness with voice vowel -12.9 is above -13.0"));
}

TEST_F(Targets, LimitPeaksAndSilence) {
  changed_.voices[1].true_peak_db = -0.99;
  EXPECT_THAT(misses_with(changed_), ElementsAre("sound 2 Good: true peak with voice vowel -0.99 is above -1.00"));
  changed_.voices[1].quietest_lufs = -std::numeric_limits<double>::infinity();
  EXPECT_THAT(misses_with(changed_), ElementsAre("sound 2 Good: silent with voice vowel"));
}

TEST_F(Targets, OfClearSoundsAreClarityPausesAndSibilance) {
  changed_.voices[0].estoi = 0.59;
  changed_.voices[0].pauses_db = -39.0;
  changed_.voices[0].sibilance_db = -3.5;
  EXPECT_EQ(misses_with(changed_).size(), 3U);
  tables_.notes[2].kind = sound_kind::spoken;
  EXPECT_THAT(misses_with(changed_), IsEmpty());
  changed_.voices[0].estoi = 0.34;
  EXPECT_THAT(misses_with(changed_), ElementsAre("sound 2 Good: ESTOI of a spoken sound 0.34 is below 0.35"));
  tables_.notes[2].kind = sound_kind::effect;
  EXPECT_THAT(misses_with(changed_), IsEmpty());
}

TEST_F(Targets, LimitTuningUnlessDetuned) {
  changed_.tuning_cents = 5.1;
  EXPECT_EQ(misses_with(changed_).size(), 1U);
  tables_.notes[2].detuned = true;
  EXPECT_THAT(misses_with(changed_), IsEmpty());
}

TEST_F(Targets, KeepSoundsApart) {
  changed_.nearest_db = 0.5 * least_distance_db;
  EXPECT_THAT(misses_with(changed_), ElementsAre(HasSubstr("distance from sound 3")));
}

TEST_F(Targets, MissWhatCannotBeMeasured) {
  changed_.tuning_cents = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(misses_with(changed_).size(), 1U);
}

// The others have a centre of 1500 Hz and a tail of -25 dB.
TEST(Names, PromiseWhatIsHeard) {
  const auto broken_by = [](const char* name, double centre_hz, double tail_db, double beat_hz, double depth) {
    std::vector<sound_figures> sounds;
    for (int number = 0; number < 5; ++number) sounds.push_back(good_sound(number));
    sounds[2].name = name;
    sounds[2].voices[0].centroid_hz = centre_hz;
    sounds[2].voices[0].pauses_with_reverb_db = tail_db;
    sounds[2].modulation_hz = beat_hz;
    sounds[2].modulation_depth = depth;
    return names_that_figures_break(sounds).size();
  };
  EXPECT_EQ(broken_by("Dark Detuned Pad", 1400.0, -15.0, 2.0, 0.9), 0U);
  EXPECT_EQ(broken_by("Dark Detuned Pad", 1600.0, -22.0, 2.0, 0.3), 3U);
  EXPECT_EQ(broken_by("Dark Detuned Pad", 1400.0, -15.0, 25.0, 0.9), 1U);
  EXPECT_EQ(broken_by("Silvery Tight Clouds", 1600.0, -26.0, 0.0, 0.0), 1U);
  EXPECT_EQ(broken_by("Silvery Lead", 1400.0, -24.0, 0.0, 0.0), 2U);
  EXPECT_EQ(broken_by("Ambient", 1500.0, -9.0, 0.0, 0.0), 0U);
}

TEST_F(Targets, OfTheSetAreClearSoundsAndFewEffects) {
  std::vector<sound_figures> sounds;
  for (int number = 0; number < 58; ++number) {
    sounds.push_back(good_sound(number));
    tables_.notes[number].kind = number < 24 ? sound_kind::clear : sound_kind::spoken;
  }
  sounds[0].voices[0].estoi = 0.86;
  EXPECT_THAT(misses_of_set(sounds, tables_), IsEmpty());
  sounds[0].voices[0].estoi = 0.84;
  EXPECT_THAT(misses_of_set(sounds, tables_), ElementsAre(HasSubstr("best ESTOI")));
  for (int number = 1; number < 13; ++number) sounds[static_cast<std::size_t>(number)].voices[0].estoi = 0.65;
  EXPECT_EQ(misses_of_set(sounds, tables_).size(), 2U);  // the median is (0.65 + 0.8) / 2
  for (int number = 23; number < 32; ++number) tables_.notes[number].kind = sound_kind::effect;
  EXPECT_THAT(misses_of_set(sounds, tables_),
              testing::IsSupersetOf({HasSubstr("number of clear sounds 23"), HasSubstr("number of effects 9")}));
}

TEST_F(Targets, OfProgramsDependOnTheirSound) {
  const program_figures of_clear{7, "P", 2, -20.0, -2.0, 0.5, -20.0};
  const program_figures of_other{8, "Q", 3, -20.0, -2.0, 0.5, -20.0};
  const program_figures loud{9, "R", 3, -20.0, -0.5, 0.5, -20.0};
  EXPECT_THAT(misses_of_programs({of_clear, of_other, loud}, tables_),
              ElementsAre("program 7 P: ESTOI 0.50 is below 0.60", "program 9 R: true peak -0.5 is above -1.0"));
}

TEST(Nearest, IsTheOtherSoundAtTheLeastDistance) {
  std::vector<sound_figures> sounds;
  for (const double level : {0.0, 5.0, 3.0}) {
    sounds.push_back(good_sound(static_cast<int>(sounds.size())));
    sounds.back().fingerprint.speech_shape_db = {level};
    sounds.back().fingerprint.vowel_shape_db = {level};
  }
  find_nearest(&sounds);
  EXPECT_EQ(sounds[0].nearest, 2);
  EXPECT_EQ(sounds[1].nearest, 2);
  EXPECT_EQ(sounds[2].nearest, 1);
  EXPECT_NEAR(sounds[2].nearest_db, 2.0, 1e-9);
}

// --- Output ---

TEST(TextTable, AlignsColumnsAndWritesCsv) {
  text_table table({"nr", "name", "x"});
  table.add({"1", "a, b", "-"});
  table.add({"10", "c", "-2.5"});
  EXPECT_EQ(table.aligned(), "nr  name     x\n 1  a, b     -\n10  c     -2.5\n");
  EXPECT_EQ(table.csv(), "nr,name,x\n1,\"a, b\",\n10,c,-2.5\n");
}

TEST(SoundTable, HasAColumnForEachVoice) {
  const std::string csv = sound_table({good_sound(2)}, {}).csv();
  EXPECT_THAT(csv, HasSubstr("LU:demo,LU:vowel,peak,centre,ES:demo,ES+rev"));
  EXPECT_THAT(csv, HasSubstr("2,Good,spoken,-20.0,-16.0,-2.0,1500,0.80,0.70"));
}

TEST(ReportPage, HasACardWithTextsThatCantBreakIt) {
  const sound_tables tables{{{2, {"Good", std::vector<double>(37, 0.0)}}},
                            {{2, {sound_kind::clear, true, "Rock & <roll>", "Sing \"low\""}}}};
  const std::string page = report_page({good_sound(2)}, tables, 3.0, {"a < b"});
  EXPECT_THAT(page, HasSubstr("Rock &amp; &lt;roll&gt;"));
  EXPECT_THAT(page, HasSubstr("Sing &quot;low&quot;"));
  EXPECT_THAT(page, HasSubstr("src=\"sounds/02.ogg\""));
  EXPECT_THAT(page, HasSubstr("<li>a &lt; b</li>"));
}

}  // namespace
