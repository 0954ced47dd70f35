// MIT License. A fingerprint of long texts, for tests that compare them with a literal.
#pragma once

#include <cstdint>
#include <string_view>

// FNV-1a, 64 bits.
constexpr uint64_t fingerprint(std::string_view bytes) {
  uint64_t hash = 0xCBF29CE484222325;
  for (const char byte : bytes) hash = (hash ^ static_cast<uint8_t>(byte)) * 0x100000001B3;
  return hash;
}
