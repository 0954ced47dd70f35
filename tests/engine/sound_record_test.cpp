// MIT License.
#include "engine/sound_record.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using values = std::vector<float>;

values parsed(std::string_view text) {
  values read(sound_record_capacity, -1);
  read.resize(static_cast<size_t>(parse_value_list(text, read)));
  return read;
}

TEST(ValueList, ReadsNumbersBetweenCommasAndSemicolons) {
  EXPECT_EQ(parsed("1,2.5;-3e-1, +4 ,0.125"), (values{1, 2.5F, -0.3F, 4, 0.125F}));
  EXPECT_EQ(parsed("7"), (values{7}));
  EXPECT_EQ(parsed("abc,2x"), (values{0, 2}));
  EXPECT_EQ(parsed(""), (values{0}));
  EXPECT_EQ(parsed("5,"), (values{5, 0}));
  // The token after an empty one is skipped.
  EXPECT_EQ(parsed("1,,3,4,5"), (values{1, 0, 4, 5, 0}));
  EXPECT_EQ(parsed(",2,3"), (values{0, 3, 0}));
}

TEST(SoundRecord, TakesUpTo512ValuesAndKeepsTheLaterOnesUnderAShorterList) {
  const std::string longest = std::string(511, ',') + "7";
  sound_record record;
  EXPECT_EQ(sound_record_take(3, "1,2,3,4", &record), 0);
  EXPECT_EQ(sound_record_take(4, longest + ",", &record), 1);
  EXPECT_EQ(record.number, 3);
  EXPECT_EQ(sound_record_take(2, "9;8", &record), 0);
  EXPECT_EQ(record.number, 2);
  EXPECT_EQ((std::vector<float>{record.values.begin(), record.values.begin() + 5}), (values{9, 8, 3, 4, 0}));
  EXPECT_EQ(sound_record_take(5, longest, &record), 0);
}

TEST(FactorySounds, Are58DifferentListsOf37Values) {
  std::set<std::string_view> texts;
  for (int32_t number = 0; number < 58; ++number) {
    EXPECT_EQ(parsed(sound_text(number)).size(), 37U) << number;
    texts.insert(sound_text(number));
  }
  EXPECT_EQ(texts.size(), 58U);
  for (const int32_t none : {-1, 58, INT32_MAX, INT32_MIN}) EXPECT_TRUE(sound_text(none).empty()) << none;
}

}  // namespace
