// MIT License. Reads plain numbers and bytes out of a block.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <new>
#include <string>
#include <utility>

#include "state/byte_order.h"
#include "support/memory/data.h"

namespace chunks {

// A position in a block, advanced by every read.
//
// Reads are not limited to the block. Past the end of a window come the next bytes of the block that owns them, then
// zeros: records that were cut short have a value for each field, and no read leaves an allocation.
template <typename ByteOrder = chunk_data_as_big_endian>
class basic_byte_cursor {
 public:
  explicit basic_byte_cursor(memory::data_reference block)
      : block_(std::move(block)),
        at_(block_ ? block_->bytes() : nullptr),
        end_(block_ ? at_ + block_->size() : nullptr),
        owner_end_(block_ ? memory::end_of_owner(*block_) : nullptr) {}

  // Bytes from here to the end of the block; 0 past it.
  uint64_t left() const { return beyond_ == 0 && at_ < end_ ? static_cast<uint64_t>(end_ - at_) : 0; }

  uint8_t read_byte() {
    const uint8_t byte = readable() > 0 ? *at_ : uint8_t{0};
    skip(1);
    return byte;
  }

  uint32_t read_number() {
    std::array<uint8_t, 4> bytes{};
    for (uint8_t& byte : bytes) byte = read_byte();
    return ByteOrder::from_bytes(bytes);
  }

  // `count` bytes as a text, zeros included. Throws std::bad_alloc when more than 1 MiB of it would be past the end.
  std::string read_text(uint64_t count) {
    const uint64_t there = std::min(count, readable());
    if (count - there > most_missing) throw std::bad_alloc();
    std::string text;
    if (there > 0) text.assign(reinterpret_cast<const char*>(at_), static_cast<size_t>(there));
    text.resize(static_cast<size_t>(count), '\0');
    skip(count);
    return text;
  }

  void skip(uint64_t count) {
    const uint64_t within = std::min(count, readable());
    at_ += within;
    beyond_ += count - within;
  }

  const memory::data_reference& block() const { return block_; }
  const uint8_t* position() const { return at_; }

 private:
  // Far above any text of a program, and a small allocation still.
  static constexpr uint64_t most_missing = uint64_t{1} << 20;

  uint64_t readable() const { return static_cast<uint64_t>(owner_end_ - at_); }

  memory::data_reference block_;
  const uint8_t* at_;  // never past the owner's end
  const uint8_t* end_;
  const uint8_t* owner_end_;
  uint64_t beyond_ = 0;  // bytes read past the owner's end
};
using byte_cursor = basic_byte_cursor<>;

}  // namespace chunks
