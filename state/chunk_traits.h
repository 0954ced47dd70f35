// MIT License. Parameters of the chunk classes: types of ids and sizes, byte order, errors.
#pragma once

#include <cstdint>
#include <string>

#include "state/byte_order.h"
#include "support/err/exception.h"

namespace chunks {

namespace error {

// A chunk whose size exceeds the bytes that are there.
class chunk_error : public err::runtime_error {
 public:
  using err::runtime_error::runtime_error;
};

}  // namespace error

template <typename Id, typename Size, typename ByteOrder>
struct basic_chunk_traits {
  using id_type = Id;
  using size_type = Size;
  using byte_order = ByteOrder;
};
using chunk_traits = basic_chunk_traits<int, unsigned int, chunk_data_as_big_endian>;

// An id is four characters, stored in text order; in memory the first is the lowest byte: chunk_id("strn").
constexpr int chunk_id(const char (&text)[5]) {
  uint32_t id = 0;
  for (int byte = 3; byte >= 0; --byte) id = id << 8 | static_cast<uint8_t>(text[byte]);
  return static_cast<int>(id);
}

// Bytes before a body: id and size.
constexpr uint64_t chunk_header_size = 8;

constexpr int string_chunk_id = chunk_id("strn");

}  // namespace chunks
