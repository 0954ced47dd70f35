// MIT License.
#include "hosts/effect/chords.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hosts/effect/keys.h"
#include "hosts/effect/text.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

constexpr int lowest_c = 36;

std::string notes_of(const std::string& name, int lowest_note = lowest_c) {
  const auto played = chord_of_name(name);
  if (!played) return "none";
  std::vector<std::string> names;
  for (const int key : keys_of_chord(*played, name, lowest_note)) names.push_back(name_of_note(lowest_note + key));
  return joined(names);
}

// What song books print over these names.
TEST(Chords, HaveTheNotesOfSongBooks) {
  EXPECT_EQ(notes_of("C"), "C3, E3, G3");
  EXPECT_EQ(notes_of("Am"), "A3, C4, E4");
  EXPECT_EQ(notes_of("Am7"), "A3, C4, E4, G4");
  EXPECT_EQ(notes_of("am7"), "A3, C4, E4, G4");
  EXPECT_EQ(notes_of("AM7"), "A3, C#4, E4, G#4");
  EXPECT_EQ(notes_of("Bb"), "A#3, D4, F4");
  EXPECT_EQ(notes_of("F#m7b5"), "F#3, A3, C4, E4");
  EXPECT_EQ(notes_of("Csus4"), "C3, F3, G3");
  EXPECT_EQ(notes_of("Dsus2"), "D3, E3, A3");
  EXPECT_EQ(notes_of("E7sus4"), "E3, A3, B3, D4");
  EXPECT_EQ(notes_of("Edim7"), "E3, G3, A#3, C#4");
  EXPECT_EQ(notes_of("C+"), "C3, E3, G#3");
  EXPECT_EQ(notes_of("D5"), "D3, A3");
  EXPECT_EQ(notes_of("Cmmaj7"), "C3, D#3, G3, B3");
  EXPECT_EQ(notes_of("G6"), "G3, B3, D4, E4");
  EXPECT_EQ(notes_of("C6/9"), "C3, E3, G3, A3, D4");
  EXPECT_EQ(notes_of("Cadd9"), "C3, E3, G3, D4");
  EXPECT_EQ(notes_of("Cmadd9"), "C3, D#3, G3, D4");
  EXPECT_EQ(notes_of("C7(b9,#11)"), "C3, E3, G3, A#3, C#4, F#4");
  EXPECT_EQ(notes_of("Am7no5"), "A3, C4, G4");
}

TEST(Chords, ArePutWhereTheyAreAskedForAndStayOnTheKeyboard) {
  EXPECT_EQ(notes_of("F/A"), "A2, F3, A3, C4");
  EXPECT_EQ(notes_of("C/B"), "B2, C3, E3, G3");
  EXPECT_EQ(notes_of("Am7@2"), "A2, C3, E3, G3");
  EXPECT_EQ(notes_of("C/E@2"), "C2, E2, G2");
  // The keyboard ends with B4.
  EXPECT_EQ(notes_of("B13"), "B3, C#4, D#4, F#4, G#4, A4");
  EXPECT_EQ(notes_of("G@4"), "D4, G4, B4");
  // Another sound's keyboard.
  EXPECT_EQ(notes_of("C", 41), "C4, E4, G4");
  EXPECT_EQ(notes_of("F", 41), "F3, A3, C4");
  EXPECT_THAT([] { notes_of("C@1"); }, ThrowsMessage<failure>(HasSubstr("chord 'C@1' isn't on this sound's keyboard")));
  EXPECT_THROW(notes_of("C@5"), failure);
}

TEST(Chords, AreNotReadIntoOtherTexts) {
  for (const char* const text : {"", "H", "Cx", "m7", "Cmin7x", "C/", "C/H", "C/G7", "C@", "C@x", "C@10", "12", "Am 7",
                                 "C7(b9", "C7b9)", "C((b9))"}) {
    EXPECT_EQ(notes_of(text), "none") << text;
  }
}

}  // namespace
