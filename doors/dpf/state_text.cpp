// MIT License.
#include "doors/dpf/state_text.h"

#include <algorithm>

namespace {

constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char padding = '=';

bool is_space(char character) {
  return character == ' ' || character == '\t' || character == '\r' || character == '\n';
}

}  // namespace

std::string text_of_bytes(std::span<const uint8_t> bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t first = 0; first < bytes.size(); first += 3) {
    const size_t count = std::min<size_t>(3, bytes.size() - first);
    uint32_t group = 0;
    for (size_t i = 0; i < 3; ++i) group = group << 8 | (i < count ? bytes[first + i] : 0U);
    for (size_t i = 0; i < 4; ++i) text += i <= count ? digits[group >> (18 - 6 * i) & 63U] : padding;
  }
  return text;
}

std::optional<std::vector<uint8_t>> bytes_of_text(std::string_view text) {
  std::vector<uint8_t> bytes;
  bytes.reserve(text.size() / 4 * 3);
  uint32_t group = 0;
  int32_t filled = 0;  // characters of the group
  int32_t padded = 0;
  for (const char character : text) {
    if (is_space(character)) continue;
    const size_t digit = digits.find(character);
    const bool is_padding = character == padding && filled >= 2;
    if (!is_padding && (digit == std::string_view::npos || padded > 0)) return std::nullopt;
    if (is_padding) ++padded;
    group = group << 6 | (is_padding ? 0U : static_cast<uint32_t>(digit));
    if (++filled < 4) continue;
    for (int32_t i = 0; i < 3 - padded; ++i) bytes.push_back(static_cast<uint8_t>(group >> (16 - 8 * i) & 255U));
    // Bits that no byte has would be lost: the text was cut and mended.
    if (padded > 0 && (group & ((1U << 8 * padded) - 1)) != 0) return std::nullopt;
    group = 0;
    filled = 0;
  }
  // Only the last group is padded: behind it, another character would have been refused.
  if (filled != 0) return std::nullopt;
  return bytes;
}

bool is_whole_state(std::string_view bytes) {
  constexpr std::string_view key("\0bank\0", 6);
  constexpr char end_of_state = '\xfe';
  const size_t found = bytes.find(key);
  if (found == std::string_view::npos) return false;
  const std::string_view rest = bytes.substr(found + key.size());
  const size_t end_of_bank = rest.find('\0');
  if (end_of_bank == std::string_view::npos || rest.find(end_of_state, end_of_bank) == std::string_view::npos)
    return false;
  return bytes_of_text(rest.substr(0, end_of_bank)).has_value();
}
