// MIT License. The state that a host saves: all programs, or the one in use, as one image. FORMAT.md has its layout.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "state/chunk.h"

namespace state {

enum class image_kind { bank, single_program };

// The plug-in that saved an image, and its version; images of others are not read.
struct plugin_identity {
  int32_t id;
  int32_t version;
};

using image_bytes = memory::reference<memory::byte_block>;

// Throws err::runtime_error when one of the programs has an empty chunk.
image_bytes bank_image(const plugin_identity& plugin, int32_t current_program,
                       const std::vector<chunks::chunk>& programs);
image_bytes single_program_image(const plugin_identity& plugin, int32_t current_program, const chunks::chunk& program);

// An image whose fields before the programs have been read.
struct opened_image {
  int32_t program_count;
  int32_t current_program;
  chunks::chunk_input_stream programs;  // at the first program chunk
};

// Reads the fields before the first program. Nothing for an image of another kind, plug-in or format, as FORMAT.md has
// it; throws chunk_error when the image claims to be longer than `bytes`.
std::optional<opened_image> open_image(const memory::data_reference& bytes, image_kind kind,
                                       const plugin_identity& plugin);

}  // namespace state
