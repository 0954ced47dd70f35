// MIT License.
#include "state/bank_image.h"

#include <array>

namespace state {

namespace {

constexpr int image_id = chunks::chunk_id("CcnK");
constexpr uint32_t bank_magic = 0x68434246;            // "hCBF"
constexpr uint32_t single_program_magic = 0x68435046;  // "hCPF"
constexpr uint32_t format_version = 1;

constexpr std::array<uint8_t, 124> reserved{};
constexpr uint64_t payload_size_field = 4;

uint32_t magic_of(image_kind kind) {
  return kind == image_kind::bank ? bank_magic : single_program_magic;
}

image_bytes image_of(image_kind kind, const plugin_identity& plugin, uint32_t program_count, int32_t current_program,
                     const memory::data& payload) {
  chunks::mutable_chunk image(image_id);
  image.write(magic_of(kind));
  image.write(format_version);
  image.write(static_cast<uint32_t>(plugin.id));
  image.write(static_cast<uint32_t>(plugin.version));
  image.write(program_count);
  image.write(static_cast<uint32_t>(current_program));
  image.write(reserved.data(), reserved.size());
  image.write(static_cast<uint32_t>(payload.size()));
  image.write(payload.bytes(), payload.size());
  return image.final_form();
}

}  // namespace

image_bytes bank_image(const plugin_identity& plugin, int32_t current_program,
                       const std::vector<chunks::chunk>& programs) {
  // Only a growing buffer: its id is not part of the image.
  chunks::mutable_chunk payload(chunks::chunk_id("KVLB"));
  for (const auto& program : programs) payload.append(program);
  return image_of(image_kind::bank, plugin, static_cast<uint32_t>(programs.size()), current_program, *payload.data());
}

image_bytes single_program_image(const plugin_identity& plugin, int32_t current_program, const chunks::chunk& program) {
  chunks::mutable_chunk payload(program.id());
  payload.write(program.data() ? program.data()->bytes() : nullptr, program.size());
  return image_of(image_kind::single_program, plugin, 1, current_program, *payload.final_form());
}

std::optional<opened_image> open_image(const memory::data_reference& bytes, image_kind kind,
                                       const plugin_identity& plugin) {
  if (bytes->size() < chunks::chunk_header_size) return std::nullopt;
  const chunks::chunk image(bytes);
  if (image.id() != image_id) return std::nullopt;

  opened_image opened{0, 0, chunks::chunk_input_stream(image)};
  auto& cursor = opened.programs.cursor();
  if (cursor.read_number() != magic_of(kind)) return std::nullopt;
  if (cursor.read_number() > format_version) return std::nullopt;
  if (static_cast<int32_t>(cursor.read_number()) != plugin.id) return std::nullopt;
  if (static_cast<int32_t>(cursor.read_number()) != plugin.version) return std::nullopt;
  opened.program_count = static_cast<int32_t>(cursor.read_number());
  opened.current_program = static_cast<int32_t>(cursor.read_number());
  cursor.skip(reserved.size() + payload_size_field);
  return opened;
}

}  // namespace state
