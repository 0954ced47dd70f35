// MIT License. Tests of key lists and note names.
#include "hosts/effect/keys.h"

#include <gtest/gtest.h>

#include "hosts/effect/text.h"

using keys = std::vector<int>;

TEST(NoteNames, CountFromC4As60) {
  const std::pair<const char*, int> names[] = {{"C4", 60},   {"c4", 60},  {"b3", 59}, {"bb3", 58},
                                               {"F##2", 43}, {"Cb4", 59}, {"C-1", 0}, {"G9", 127}};
  for (const auto& [name, note] : names) EXPECT_EQ(note_of_name(name), note) << name;
  for (int note = 0; note < 128; ++note) EXPECT_EQ(note_of_name(name_of_note(note)), note);
  for (const char* name : {"", "C", "H4", "4", "C4x", "C 4", "#4", "C10", "G#9", "Cb-1", "C--1", "\xC3\x84"}) {
    EXPECT_EQ(note_of_name(name), std::nullopt) << name;
  }
}

TEST(Keys, AreIndicesOrNamesRelativeToTheLowestNote) {
  EXPECT_EQ(parse_keys("12,16,19", 36), (keys{12, 16, 19}));
  EXPECT_EQ(parse_keys("C4,E4,G4", 48), (keys{12, 16, 19}));
  EXPECT_EQ(parse_keys(" 35 , C2, 0", 36), (keys{0, 35})) << "sorted, without duplicates or blanks";
}

namespace {

std::string complaint(const std::string& list) {
  try {
    parse_keys(list, 36);
  } catch (const failure& reason) {
    return reason.what();
  }
  return "no complaint";
}

}  // namespace

TEST(Keys, OutsideTheKeyboardOrTooManyAreRefused) {
  for (const char* list : {"36", "-1", "12,36", "B1", "C5", "", "12,", "12,,16", "1.5", "99999999999"}) {
    EXPECT_NE(complaint(list).find("possible are 0 to 35, or C2 to B4"), std::string::npos) << list;
  }
  std::string list = "0";
  for (int key = 1; key < largest_chord; ++key) list.append(",").append(std::to_string(key));
  EXPECT_EQ(parse_keys(list, 36).size(), 32U);
  EXPECT_NE(complaint(list + ",32").find("at most 32"), std::string::npos);
}
