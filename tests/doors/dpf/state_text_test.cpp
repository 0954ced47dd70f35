// MIT License.
#include "doors/dpf/state_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::string text_of(std::string_view bytes) {
  return text_of_bytes({reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
}

TEST(StateText, IsThatOfTheStandardsExamples) {
  const std::string_view bytes = "foobar";
  const std::string_view expected[] = {"", "Zg==", "Zm8=", "Zm9v", "Zm9vYg==", "Zm9vYmE=", "Zm9vYmFy"};
  for (size_t size = 0; size <= bytes.size(); ++size) EXPECT_EQ(text_of(bytes.substr(0, size)), expected[size]);
}

TEST(StateText, BringsAllBytesBackWhateverHostsDoWithItsLines) {
  std::vector<uint8_t> bytes(3 * 256 + 1);
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<uint8_t>(i * 7 + i / 256);
  std::string text = text_of_bytes(bytes);
  EXPECT_EQ(bytes_of_text(text), bytes);
  for (size_t place = 0; place < text.size(); place += 77) text.insert(place, "\r\n\t ");
  EXPECT_EQ(bytes_of_text(text), bytes);
}

TEST(StateText, IsRefusedWhenDamaged) {
  EXPECT_EQ(bytes_of_text(""), std::vector<uint8_t>{});
  for (const char* damaged : {"Z", "Zm", "Zm8", "Zm9vY", "Zm9v=", "=m9v", "Z===", "Zg=v", "Zg==Zm9v",
                              "Zm9v====", "Zm-v", "Zm_v", "Zm9v\x01", "Zm9\xff", "Zh==", "Zm9="}) {
    EXPECT_EQ(bytes_of_text(damaged), std::nullopt) << damaged;
  }
  EXPECT_EQ(bytes_of_text(std::string_view("Zm9v\0Zm9", 8)), std::nullopt);
}

TEST(WholeState, IsKnownByItsBankAndItsEnd) {
  using namespace std::string_literals;
  const std::string state =
      "__dpf_program__\0"
      "3\0__dpf_state_begin__\0bank\0Zm9v\0__dpf_state_end__\0\xfe\0"s;
  EXPECT_TRUE(is_whole_state(state));
  EXPECT_TRUE(is_whole_state(state + "what follows"));
  for (size_t size = 0; size + 1 < state.size(); ++size) EXPECT_FALSE(is_whole_state(state.substr(0, size))) << size;
  std::string damaged = state;
  damaged[state.find("Zm9v")] = '?';
  EXPECT_FALSE(is_whole_state(damaged));
}

}  // namespace
