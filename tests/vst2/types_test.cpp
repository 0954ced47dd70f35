// MIT License. Tests of the text helpers of the interface.
#include "vst2/types.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(FourCharacters, AreReadBigEndianWhateverTheSignOfChar) {
  EXPECT_EQ(CCONST('N', 'v', 'E', 'f'), 0x4E764566);
  EXPECT_EQ(CCONST('\x80', '\xff', '\0', '\x81'), static_cast<VstInt32>(0x80ff0081U));
}

TEST(CopiedText, IsCutAtTheLimitAndWritesOneByteMore) {
  char text[8] = {'#', '#', '#', '#', '#', '#', '#', '#'};
  EXPECT_EQ(vst_strncpy(text, "ChorusOn", 4), text);
  EXPECT_EQ(std::string(text, 8), std::string("Chor\0###", 8));
  vst_strncpy(text, "ab", 5);
  EXPECT_EQ(std::string(text, 8), std::string("ab\0\0\0\0##", 8));
}

TEST(AppendedText, IsCutAtTheLimitOfTheWhole) {
  char text[8] = {'a', 'b', 0, '#', '#', '#', '#', '#'};
  EXPECT_EQ(vst_strncat(text, "cdefg", 5), text);
  EXPECT_EQ(std::string(text, 8), std::string("abcde\0##", 8));
  vst_strncat(text, "x", 5);
  EXPECT_STREQ(text, "abcde");
}

}  // namespace
