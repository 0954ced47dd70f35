// MIT License.
#include "state/program_record.h"

namespace state {

namespace {

constexpr uint32_t written_version = 1010;
constexpr int32_t first_unknown_version = 1011;
constexpr int32_t first_version_with_octave = 1010;

constexpr uint32_t name_tag = 0;
constexpr uint32_t uuid_tag = 1;

uint8_t flag(bool on) {
  return on ? 1 : 0;
}

// Nothing for a later version. The stored number is signed.
std::optional<int32_t> read_version(chunks::chunk_input_stream* stream) {
  const auto version = static_cast<int32_t>(stream->cursor().read_number());
  if (version >= first_unknown_version) return std::nullopt;
  return version;
}

std::string read_text(chunks::chunk_input_stream* stream) {
  chunks::chunk chunk;
  stream->next(&chunk);
  return chunks::string_chunk(chunk).text();
}

}  // namespace

chunks::chunk to_chunk(const program& stored) {
  chunks::mutable_chunk chunk(program_chunk_id);
  chunk.write(written_version);
  chunk.append(chunks::string_chunk(name_tag, stored.name));
  chunk.append(chunks::string_chunk(uuid_tag, stored.sound_uuid));
  chunk.write(flag(stored.chorus_on));
  chunk.write(flag(stored.reverb_on));
  chunk.write(flag(stored.octave_on));
  for (const uint8_t key : stored.keys) chunk.write(flag(key != 0));
  return chunk;
}

std::optional<program> read_program(const chunks::chunk& chunk) {
  chunks::chunk_input_stream stream(chunk);
  const auto version = read_version(&stream);
  if (!version) return std::nullopt;
  program read;
  read.name = read_text(&stream);
  read.sound_uuid = read_text(&stream);
  auto& cursor = stream.cursor();
  read.chorus_on = cursor.read_byte() != 0;
  read.reverb_on = cursor.read_byte() != 0;
  if (*version >= first_version_with_octave) read.octave_on = cursor.read_byte() != 0;
  for (uint8_t& key : read.keys) key = flag(cursor.read_byte() != 0);
  return read;
}

std::optional<std::string> read_program_name(const chunks::chunk& chunk) {
  chunks::chunk_input_stream stream(chunk);
  if (!read_version(&stream)) return std::nullopt;
  return read_text(&stream);
}

}  // namespace state
