// MIT License. The stored form of one program: a sound named by its uuid, the three switches and the held keys.
//
// Body of a "KVLP" chunk, numbers big-endian:
//
//   field         size    content
//   version       4       1010 when written
//   name chunk    16 + n  string chunk with tag 0
//   uuid chunk    16 + m  string chunk with tag 1
//   chorus flag   1       0 or 1; any other byte reads as 1
//   reverb flag   1       likewise
//   octave flag   1       likewise; absent, and off, before version 1010
//   key flags     36      one byte per key of the keyboard, 0 or 1 likewise
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "state/chunk.h"

namespace state {

constexpr int program_chunk_id = chunks::chunk_id("KVLP");

constexpr size_t stored_key_count = 36;

struct program {
  std::string name;
  std::string sound_uuid;
  bool chorus_on = false;
  bool reverb_on = false;
  bool octave_on = false;
  std::array<uint8_t, stored_key_count> keys{};  // 0 or 1
};

chunks::chunk to_chunk(const program& stored);

// The program in a chunk, whatever the chunk's id. Nothing when a later version wrote it. Throws err::runtime_error
// when the two texts are not there; a body that ends behind them yields what lies behind it, as basic_byte_cursor
// tells.
std::optional<program> read_program(const chunks::chunk& chunk);

// The name alone, under the same conditions.
std::optional<std::string> read_program_name(const chunks::chunk& chunk);

}  // namespace state
