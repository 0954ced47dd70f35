// MIT License. Tests of the text helpers of the interface.
#include "vst2/types.h"

#include <gtest/gtest.h>

#include <string>

namespace {

// The first character is in the highest byte, whatever the signedness of char.
static_assert(CCONST('N', 'v', 'E', 'f') == 0x4E764566);
static_assert(CCONST('\x80', '\xff', '\0', '\x81') == static_cast<VstInt32>(0x80ff0081U));

TEST(Texts, AreCopiedAndAppendedUpToTheLimitAndTerminated) {
  char text[] = "#######";
  EXPECT_EQ(vst_strncpy(text, "ChorusOn", 4), text);
  EXPECT_EQ(std::string(text, 7), std::string("Chor\0##", 7));
  vst_strncpy(text, "ab", 5);
  EXPECT_EQ(std::string(text, 7), std::string("ab\0\0\0\0#", 7));
  EXPECT_EQ(vst_strncat(text, "cdefg", 5), text);
  EXPECT_EQ(std::string(text, 7), std::string("abcde\0#", 7));
  vst_strncat(text, "x", 5);
  EXPECT_STREQ(text, "abcde");
}

}  // namespace
