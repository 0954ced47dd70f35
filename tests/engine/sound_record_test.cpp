// MIT License.
#include "engine/sound_record.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>

namespace {

using values = std::vector<float>;

std::string list_of(int count) {
  std::string text = "1";
  for (int i = 1; i < count; ++i) text += (i % 2 == 0 ? ',' : ';') + std::to_string(i);
  return text;
}

TEST(ValueList, ReadsNumbersBetweenCommasAndSemicolons) {
  EXPECT_EQ(parse_value_list("1,2.5;-3e-1, +4 ,0.125"), (values{1, 2.5F, -0.3F, 4, 0.125F}));
  EXPECT_EQ(parse_value_list("7"), (values{7}));
  EXPECT_EQ(parse_value_list("abc,2x"), (values{0, 2}));
}

TEST(ValueList, HasOneValueMoreThanSeparators) {
  EXPECT_EQ(parse_value_list(""), (values{0}));
  EXPECT_EQ(parse_value_list("5,").size(), 2U);
  EXPECT_EQ(parse_value_list(",,").size(), 3U);
}

TEST(ValueList, SkipsTheTokenAfterAnEmptyOne) {
  EXPECT_EQ(parse_value_list("1,,3,4,5"), (values{1, 0, 4, 5, 0}));
  EXPECT_EQ(parse_value_list(",2,3"), (values{0, 3, 0}));
}

// A host may run under a locale with a decimal comma. The test compiles one of its own, as few systems have any.
TEST(ValueList, DoesNotDependOnTheHostsLocale) {
  std::string folder = testing::TempDir() + "kesrel-locale-XXXXXX";
  ASSERT_NE(mkdtemp(folder.data()), nullptr);
  std::ofstream(folder + "/source")
      << "LC_CTYPE\nEND LC_CTYPE\n"
         "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\ngrouping -1\nEND LC_NUMERIC\n";
  const std::string compile = "cd '" + folder + "' && localedef -c -i source -f ANSI_X3.4-1968 ./comma 2>/dev/null";
  std::system(compile.c_str());  // it complains of the categories that are missing
  setenv("LOCPATH", folder.c_str(), 1);
  ASSERT_NE(std::setlocale(LC_NUMERIC, "comma"), nullptr);
  ASSERT_EQ(std::strtof("0,5", nullptr), 0.5F) << "a comma is the decimal sign now";
  EXPECT_EQ(parse_value_list("0.5;1.5"), (values{0.5F, 1.5F}));
  std::setlocale(LC_NUMERIC, "C");
  unsetenv("LOCPATH");
  std::filesystem::remove_all(folder);
}

TEST(SoundRecord, TakesUpTo512ValuesAndRefusesMore) {
  sound_record record;
  EXPECT_EQ(sound_record_take(3, list_of(512), &record), 0);
  EXPECT_EQ(record.number, 3);
  EXPECT_EQ(record.values[511], 511.0F);
  EXPECT_EQ(sound_record_take(4, list_of(513), &record), 1);
  EXPECT_EQ(record.number, 3);
}

TEST(SoundRecord, KeepsTheLaterValuesUnderAShorterList) {
  sound_record record;
  sound_record_take(1, "1,2,3,4", &record);
  sound_record_take(2, "9,8", &record);
  EXPECT_EQ(record.number, 2);
  EXPECT_EQ((std::vector<float>{record.values.begin(), record.values.begin() + 5}), (values{9, 8, 3, 4, 0}));
}

TEST(FactorySounds, AreEightDifferentListsOf37Values) {
  std::set<std::string_view> texts;
  for (int32_t number = 0; number < 8; ++number) {
    EXPECT_EQ(parse_value_list(sound_text(number)).size(), 37U) << number;
    texts.insert(sound_text(number));
  }
  EXPECT_EQ(texts.size(), 8U);
}

TEST(FactorySounds, HaveNoTextOutsideTheTable) {
  for (const int32_t number : {-2, -1, 8, 57, 58, 1000, INT32_MAX, INT32_MIN}) {
    EXPECT_TRUE(sound_text(number).empty()) << number;
  }
}

}  // namespace
