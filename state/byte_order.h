// MIT License. Numbers as state stores them: big-endian, whatever the machine.
#pragma once

#include <array>
#include <cstdint>

namespace chunks {

// The byte order of sizes, and of the numbers inside bodies.
struct chunk_data_as_big_endian {
  static constexpr std::array<uint8_t, 4> to_bytes(uint32_t number) {
    return {static_cast<uint8_t>(number >> 24), static_cast<uint8_t>(number >> 16), static_cast<uint8_t>(number >> 8),
            static_cast<uint8_t>(number)};
  }
  static constexpr uint32_t from_bytes(const std::array<uint8_t, 4>& bytes) {
    return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | uint32_t{bytes[3]};
  }
};

}  // namespace chunks
