// MIT License. Tests of finding a sound or a program by what the user types.
#include "hosts/effect/finding.h"

#include <gtest/gtest.h>

#include "hosts/effect/text.h"

namespace {

const std::vector<findable> entries = {
    {0, "Basic Detuned Sawtooth", "maker.basic.Basic_Detuned_Sawtooth"},
    {1, "Tight Lead", "maker.basic.Tight_Lead"},
    {5, "Tight Lead 2", "maker.more.Tight_Lead_2"},
    {6, "Ring-Mod", "maker.more.Ring_Mod"},
    {7, "RING-MOD"},
    {8, ""},
};

int found(const char* wanted) {
  return entries[find_entry(entries, wanted, {"sound", "--list-sounds"})].number;
}

std::string complaint(const char* wanted) {
  try {
    found(wanted);
  } catch (const failure& reason) {
    return reason.what();
  }
  return "no complaint";
}

}  // namespace

TEST(Finding, AcceptsNumberNameIdAndUniquePart) {
  EXPECT_EQ(found("5"), 5);
  EXPECT_EQ(found("Ring-Mod"), 6) << "an exact match wins";
  EXPECT_EQ(found("MAKER.MORE.RING_MOD"), 6);
  EXPECT_EQ(found("sawTOOTH"), 0);
  EXPECT_EQ(found("tight lead"), 1) << "a whole name wins over a part";
}

TEST(Finding, NamesTheCandidates) {
  EXPECT_EQ(complaint("tight"), "sound 'tight' could be 1 'Tight Lead', 5 'Tight Lead 2'");
  EXPECT_EQ(complaint("ring-mod"), "sound 'ring-mod' could be 6 'Ring-Mod', 7 'RING-MOD'");
  for (const char* number : {"2", "99999999999"}) {
    EXPECT_NE(complaint(number).find("there are 0 to 1, 5 to 8"), std::string::npos) << complaint(number);
  }
  EXPECT_NE(complaint("rnig mod").find("nearest are 6 'Ring-Mod'"), std::string::npos) << complaint("rnig mod");
  EXPECT_NE(complaint("lead tigt").find("nearest are 1 'Tight Lead'"), std::string::npos) << complaint("lead tigt");
  EXPECT_NE(complaint("").find("--list-sounds shows all"), std::string::npos);
}
