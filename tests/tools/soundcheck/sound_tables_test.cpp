// MIT License.
#include "tools/soundcheck/sound_tables.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "engine/sound_values.h"
#include "hosts/effect/text.h"
#include "tests/words/temporary_folder.h"
#include "tools/soundcheck/sounds_page.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class SoundTables : public testing::Test {
 protected:
  SoundTables() {
    std::filesystem::create_directory(path("sounds"));
    write("factory_sounds.csv", "number, name, and 37 values\n  3, Three" + values() + "\n");
  }

  std::string path(const std::string& name) const { return folder_.path(name); }
  void write(const std::string& name, const std::string& content) const {
    std::ofstream(path("sounds/" + name)) << content;
  }
  void write_note(const std::string& row) const {
    write("sound_notes.csv", "# idea\nnumber | name | kind | tuning | character | hint\n" + row + "\n");
  }
  sound_tables read() const { return read_sound_tables(folder_.path()); }
  std::string refusal() const {
    try {
      read();
    } catch (const failure& error) {
      return error.what();
    }
    return "";
  }

  static std::string values() {
    std::string cells;
    for (int i = 0; i < sound_value_count; ++i) cells += ", " + std::to_string(i) + ".5";
    return cells;
  }

 private:
  temporary_folder folder_;
};

TEST_F(SoundTables, ReadTheValuesOfSounds) {
  const auto tables = read();
  ASSERT_TRUE(tables.rows.contains(3));
  EXPECT_EQ(tables.rows.at(3).name, "Three");
  EXPECT_EQ(tables.rows.at(3).values.at(value_output_gain_db), 36.5);
}

TEST_F(SoundTables, ReadTheNotesOfSounds) {
  write_note("3 | Three | clear | detuned | Bright, and dry. | Sing low");
  const auto note = read().note(3);
  EXPECT_EQ(note.kind, sound_kind::clear);
  EXPECT_TRUE(note.detuned);
  EXPECT_EQ(note.character, "Bright, and dry.");
  EXPECT_EQ(note.hint, "Sing low");
}

TEST_F(SoundTables, TakeASoundWithoutANoteAsSpokenAndInTune) {
  EXPECT_EQ(read().note(3).kind, sound_kind::spoken);
  EXPECT_FALSE(read().note(3).detuned);
}

TEST_F(SoundTables, NameTheLineThatIsWrong) {
  write_note("3 | Three | loud | true | |");
  EXPECT_THAT(refusal(), HasSubstr("sound_notes.csv:3: a sound is clear, spoken or effect, not 'loud'"));
  write_note("3 | Three | clear | sharp | |");
  EXPECT_THAT(refusal(), HasSubstr("true or detuned, not 'sharp'"));
  write_note("3 | Three | clear");
  EXPECT_THAT(refusal(), HasSubstr("3 columns instead of 6"));
  write_note("three | Three | clear | true | |");
  EXPECT_THAT(refusal(), HasSubstr("'three' is no number"));
}

TEST_F(SoundTables, MakeAPageOfSounds) {
  write_note("3 | Three | clear | true | Bright and dry | Does it sing?");
  EXPECT_THAT(sounds_page(read()),
              HasSubstr("- **3 Modern Chord Coder**, clear, *filter bank, two passes*. Bright and dry. "
                        "Does it sing?\n"));
}

// --- The pitches of a sound ---

sound_row row_with(std::initializer_list<std::pair<sound_value, double>> values) {
  sound_row row{"", std::vector<double>(sound_value_count, 0.0)};
  row.values[value_octave] = 1.0;
  for (const auto& [place, value] : values) row.values[static_cast<std::size_t>(place)] = value;
  return row;
}

constexpr int a4 = 69;

testing::Matcher<double> hz(double value) {
  return testing::DoubleNear(value, 0.01);
}

TEST(Fundamentals, AreTheKeysInTheFirstOctave) {
  EXPECT_THAT(fundamentals_of(row_with({}), {a4, a4 + 12}), ElementsAre(hz(440), hz(880)));
  EXPECT_THAT(fundamentals_of(row_with({{value_octave, 0.0}}), {a4}), ElementsAre(hz(220)));
  EXPECT_THAT(fundamentals_of(row_with({{value_octave, 0.0}, {value_sampled, 1.0}}), {a4}), ElementsAre(hz(440)));
}

TEST(Fundamentals, FollowBothOscillatorsButNotTheirFineTuning) {
  const auto fifth = row_with({{value_coarse2, 7.0}, {value_fine1, -8.0}, {value_fine2, 8.0}});
  EXPECT_THAT(fundamentals_of(fifth, {a4}), ElementsAre(hz(440), hz(659.26)));
}

TEST(Fundamentals, OfASyncedPairAreTheFirstAlone) {
  EXPECT_THAT(fundamentals_of(row_with({{value_coarse2, 7.0}, {value_sync, 1.0}}), {a4}), ElementsAre(hz(440)));
}

// 659.26 - 440 is 6 cents below A3, 659.26 + 440 is 15 cents below C#6.
TEST(Fundamentals, OfARingHaveSumAndDifference) {
  EXPECT_THAT(fundamentals_of(row_with({{value_coarse2, 7.0}, {value_ring, 1.0}}), {a4}),
              ElementsAre(hz(220), hz(440), hz(659.26), hz(1108.73)));
}

}  // namespace
