// MIT License. Tests of key lists and note names.
#include "hosts/keys.h"

#include <gtest/gtest.h>

#include "hosts/failure.h"

using keys = std::vector<int>;

TEST(NoteNames, FollowTheConventionThatC4Is60) {
  EXPECT_EQ(note_of_name("C4"), 60);
  EXPECT_EQ(note_of_name("c4"), 60);
  EXPECT_EQ(note_of_name("A4"), 69);
  EXPECT_EQ(note_of_name("b3"), 59);
  EXPECT_EQ(note_of_name("bb3"), 58);
  EXPECT_EQ(note_of_name("F##2"), 43);
  EXPECT_EQ(note_of_name("Cb4"), 59) << "an accidental crosses the octave's border";
  EXPECT_EQ(note_of_name("C-1"), 0);
  EXPECT_EQ(note_of_name("G9"), 127);
}

TEST(NoteNames, AreRefusedWhenNotOfThatForm) {
  for (const char* name : {"", "C", "H4", "4", "C4x", "C 4", "#4", "C10", "G#9", "Cb-1", "C--1",
                           "\xC3\x84"
                           "4"}) {
    EXPECT_EQ(note_of_name(name), std::nullopt) << name;
  }
}

TEST(NoteNames, AreReadAsTheyAreWritten) {
  for (int note = 0; note < 128; ++note) EXPECT_EQ(note_of_name(name_of_note(note)), note);
}

TEST(Keys, AreReadAsIndicesAndAsNamesRelativeToTheLowestNote) {
  EXPECT_EQ(parse_keys("12,16,19", 36), (keys{12, 16, 19}));
  EXPECT_EQ(parse_keys("C3,E3,G3", 36), (keys{12, 16, 19}));
  EXPECT_EQ(parse_keys("C4,E4,G4", 48), (keys{12, 16, 19}));
  EXPECT_EQ(parse_keys(" 35 , C2, 0", 36), (keys{0, 35})) << "sorted, each once, blanks ignored";
}

static std::string complaint(const char* list, int lowest_note) {
  try {
    parse_keys(list, lowest_note);
  } catch (const failure& reason) {
    return reason.what();
  }
  return "no complaint";
}

TEST(Keys, OutsideTheKeyboardAreRefusedWithWhatIsPossible) {
  for (const char* list : {"36", "-1", "12,36", "B1", "C5", "", "12,", "12,,16", "1.5", "99999999999"}) {
    EXPECT_NE(complaint(list, 36).find("possible are 0 to 35, or C2 to B4"), std::string::npos) << list;
  }
  EXPECT_NE(complaint("C3", 60).find("C4 to B6"), std::string::npos);
}

TEST(Keys, AreAtMostAsManyAsSoundAtOnce) {
  std::string list = "0";
  for (int key = 1; key < largest_chord; ++key) list.append(",").append(std::to_string(key));
  EXPECT_EQ(parse_keys(list, 36).size(), 32U);
  EXPECT_NE(complaint((list + ",32").c_str(), 36).find("at most 32"), std::string::npos);
}
