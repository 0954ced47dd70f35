// MIT License. The state that a host saves: all programs, or the one in use, as one run of bytes.
//
// Numbers are big-endian, offsets count from the first byte:
//
//   offset  size  field
//   0       4     "CcnK"
//   4       4     number of bytes behind this field
//   8       4     "hCBF" for a bank, "hCPF" for a single program
//   12      4     format version, 1
//   16      4     id of the plug-in
//   20      4     version of the plug-in
//   24      4     number of programs; 1 for a single program
//   28      4     current program
//   32      124   zero; not read
//   156     4     size of the payload; not read
//   160           the program chunks, one behind the other, each with its header
//
// This is the shape of the published chunk bank and chunk program files, but for the two magics, whose bytes stand in
// reverse. Saved songs depend on them.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "state/chunk.h"

namespace state {

enum class image_kind { bank, single_program };

// Whose state it is; an image of another plug-in or version is not read.
struct plugin_identity {
  int32_t id;
  int32_t version;
};

using image_bytes = memory::reference<memory::byte_block>;

// Throws err::runtime_error when one of the programs has an empty chunk.
image_bytes bank_image(const plugin_identity& plugin, int32_t current_program,
                       const std::vector<chunks::chunk>& programs);
image_bytes single_program_image(const plugin_identity& plugin, int32_t current_program, const chunks::chunk& program);

// An image whose head has been read.
struct opened_image {
  int32_t program_count;
  int32_t current_program;
  chunks::chunk_input_stream programs;  // at the first program chunk
};

// Reads the head. Nothing when this is no such image of that plug-in, or one of a later format; throws chunk_error when
// the image claims to be longer than `bytes`. Bytes behind the image's end are not looked at.
std::optional<opened_image> open_image(const memory::data_reference& bytes, image_kind kind,
                                       const plugin_identity& plugin);

}  // namespace state
