// MIT License. Tests of finding a sound by what a person types.
#include "hosts/sounds.h"

#include <gtest/gtest.h>

#include "hosts/failure.h"

static const std::vector<sound> sounds = {
    {3, 0, 36, "Basic Detuned Sawtooth", "Basic", "maker.basic.Basic_Detuned_Sawtooth"},
    {4, 1, 48, "Tight Lead", "Basic", "maker.basic.Tight_Lead"},
    {8, 5, 60, "Tight Lead 2", "More", "maker.more.Tight_Lead_2"},
    {9, 6, 36, "Ring-Mod", "More", "maker.more.Ring_Mod"},
};

static int found(const char* wanted) {
  return find_sound(sounds, wanted).number;
}

static std::string complaint(const char* wanted) {
  try {
    find_sound(sounds, wanted);
  } catch (const failure& reason) {
    return reason.what();
  }
  return "no complaint";
}

TEST(Sounds, AreFoundByNumberNameUuidAndUniquePart) {
  EXPECT_EQ(found("5"), 5);
  EXPECT_EQ(found("Ring-Mod"), 6);
  EXPECT_EQ(found("ring-mod"), 6);
  EXPECT_EQ(found("MAKER.MORE.RING_MOD"), 6);
  EXPECT_EQ(found("sawTOOTH"), 0);
  EXPECT_EQ(found("Tight Lead"), 1) << "a whole name wins over a part of another";
}

TEST(Sounds, AreRefusedWithTheCandidatesWhenMoreThanOneFits) {
  EXPECT_EQ(complaint("tight"), "sound 'tight' could be 'Tight Lead', 'Tight Lead 2'");
}

TEST(Sounds, AreRefusedWithTheNearestWhenNoneFits) {
  EXPECT_NE(complaint("rnig mod").find("nearest are 'Ring-Mod'"), std::string::npos) << complaint("rnig mod");
  EXPECT_NE(complaint("sawtoth").find("nearest are 'Basic Detuned"), std::string::npos) << complaint("sawtoth");
  EXPECT_NE(complaint("lead tigt").find("nearest are 'Tight Lead'"), std::string::npos) << complaint("lead tigt");
  EXPECT_NE(complaint("").find("--list-sounds"), std::string::npos);
}

TEST(Sounds, AreRefusedWithTheNumbersThereAre) {
  for (const char* number : {"2", "7", "99999999999"}) {
    EXPECT_NE(complaint(number).find("there are 0 to 1, 5 to 6"), std::string::npos) << complaint(number);
  }
}

TEST(Sounds, AreListedWithAllThatIdentifiesThem) {
  const auto table = table_of(sounds);
  EXPECT_NE(table.find("  5  Tight Lead 2            More   C4 (60)  maker.more.Tight_Lead_2\n"), std::string::npos)
      << table;
}
