// MIT License. The stored form of one program: a sound named by its uuid, the three switches and the held keys.
// FORMAT.md has its layout and the outcome for damaged records.
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

// The program in a chunk, whatever the chunk's id. Nothing for a later version. Throws err::runtime_error when the two
// texts are missing; fields past the end of the body are read as basic_byte_cursor reads them.
std::optional<program> read_program(const chunks::chunk& chunk);

// The name alone, under the same conditions.
std::optional<std::string> read_program_name(const chunks::chunk& chunk);

}  // namespace state
