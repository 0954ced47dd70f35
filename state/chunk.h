// MIT License. Chunks: structured binary state as an id, a size and a body, which may hold further chunks. FORMAT.md
// has the layout. Reading a nested chunk copies nothing: it is a window that keeps its parent alive.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "state/byte_cursor.h"
#include "state/chunk_traits.h"
#include "support/memory/data.h"

namespace chunks {

// An id and a body. Copies share the body.
template <typename Traits>
class basic_chunk {
 public:
  using id_type = typename Traits::id_type;
  using size_type = typename Traits::size_type;
  using byte_order = typename Traits::byte_order;

  basic_chunk() = default;
  basic_chunk(id_type id, memory::data_reference body) : id_(id), data_(std::move(body)) {}

  // A view of a block that begins with a whole chunk; bytes after the chunk are ignored. A block shorter than a header
  // reads as if zeros followed. Throws chunk_error when the body doesn't fit.
  explicit basic_chunk(const memory::data_reference& whole) {
    basic_byte_cursor<byte_order> cursor(whole);
    id_ = read_id(&cursor);
    const uint64_t body_size = cursor.read_number();
    if (body_size + chunk_header_size > whole->size()) {
      throw error::chunk_error("chunk::chunk(data_ref) chunk corrupt! chunk size bigger than avail data!");
    }
    data_ = memory::data_reference(new memory::child_data_reference(whole, cursor.position(), body_size));
  }

  id_type id() const { return id_; }
  // The body; may be null.
  const memory::data_reference& data() const { return data_; }
  uint64_t size() const { return data_ ? data_->size() : 0; }

  static id_type read_id(basic_byte_cursor<byte_order>* cursor) {
    uint32_t id = 0;
    for (int byte = 0; byte < 4; ++byte) id |= uint32_t{cursor->read_byte()} << (8 * byte);
    return static_cast<id_type>(id);
  }

 protected:
  id_type id_ = 0;
  memory::data_reference data_;
};

// A chunk that is being written.
template <typename Traits>
class basic_mutable_chunk : public basic_chunk<Traits> {
 public:
  using byte_order = typename Traits::byte_order;

  explicit basic_mutable_chunk(typename Traits::id_type id) : basic_mutable_chunk(id, new memory::byte_block) {}

  // Each adds at the end of the body.
  void write(uint32_t number) {
    const auto bytes = byte_order::to_bytes(number);
    write(bytes.data(), bytes.size());
  }
  void write(uint8_t byte) { write(&byte, 1); }
  void write(const void* bytes, uint64_t count) { body_->append(bytes, count); }

  // Adds a chunk with its header. Throws err::runtime_error for an empty one.
  void append(const basic_chunk<Traits>& chunk) {
    if (chunk.size() == 0) {
      throw err::runtime_error("cannot append chunks to mutable_chunk after we created a final chunk!");
    }
    append_wire_form(chunk, body_);
  }

  // A new block with the header and everything written so far. Writing may continue.
  memory::reference<memory::byte_block> final_form() const {
    memory::reference<memory::byte_block> whole(new memory::byte_block(this->size() + chunk_header_size));
    append_wire_form(*this, whole.get());
    return whole;
  }

 private:
  basic_mutable_chunk(typename Traits::id_type id, memory::byte_block* body)
      : basic_chunk<Traits>(id, memory::data_reference(body)), body_(body) {}

  static void append_wire_form(const basic_chunk<Traits>& chunk, memory::byte_block* block) {
    const auto id = static_cast<uint32_t>(chunk.id());
    for (int byte = 0; byte < 4; ++byte) {
      const auto character = static_cast<uint8_t>(id >> (8 * byte));
      block->append(&character, 1);
    }
    const auto size = byte_order::to_bytes(static_cast<typename Traits::size_type>(chunk.size()));
    block->append(size.data(), size.size());
    if (chunk.size() > 0) block->append(chunk.data()->bytes(), chunk.size());
  }

  memory::byte_block* body_;  // held by the base
};

// A text under the id "strn", with a tag that the writer chooses and the reader ignores.
template <typename Traits>
class basic_string_chunk : public basic_chunk<Traits> {
 public:
  basic_string_chunk(uint32_t string_tag, std::string_view text) : basic_chunk<Traits>(made_of(string_tag, text)) {}

  // Views a chunk that was read. Throws err::runtime_error when its id is not "strn".
  explicit basic_string_chunk(const basic_chunk<Traits>& chunk) : basic_chunk<Traits>(chunk) {
    if (chunk.id() != string_chunk_id) {
      throw err::runtime_error("basic_string_chunk initialized with wrong chunk data!");
    }
  }

  // As long as its length field says; basic_byte_cursor defines what is read past the body.
  std::string text() const {
    basic_byte_cursor<typename Traits::byte_order> cursor(this->data());
    cursor.skip(tag_size);
    const uint32_t length = cursor.read_number();
    return cursor.read_text(length);
  }

 private:
  static constexpr uint64_t tag_size = 4;

  static basic_chunk<Traits> made_of(uint32_t string_tag, std::string_view text) {
    basic_mutable_chunk<Traits> chunk(string_chunk_id);
    chunk.write(string_tag);
    chunk.write(static_cast<uint32_t>(text.size()));
    chunk.write(text.data(), text.size());
    return chunk;
  }
};

// Reads a body: nested chunks through next(), plain numbers and bytes through the cursor. Both advance it.
template <typename Traits>
class basic_chunk_input_stream {
 public:
  using cursor_type = basic_byte_cursor<typename Traits::byte_order>;

  explicit basic_chunk_input_stream(basic_chunk<Traits> chunk) : chunk_(std::move(chunk)), cursor_(chunk_.data()) {}

  cursor_type& cursor() { return cursor_; }

  // Reads the chunk at the cursor. Throws err::runtime_error, without advancing, when the body ends before the chunk.
  void next(basic_chunk<Traits>* chunk) {
    cursor_type ahead = cursor_;
    if (ahead.left() < chunk_header_size) throw no_chunk();
    const auto id = basic_chunk<Traits>::read_id(&ahead);
    const uint64_t size = ahead.read_number();
    if (ahead.left() < size) throw no_chunk();
    const memory::data_reference body(new memory::child_data_reference(chunk_.data(), ahead.position(), size));
    ahead.skip(size);
    *chunk = basic_chunk<Traits>(id, body);
    cursor_ = ahead;
  }

 private:
  static err::runtime_error no_chunk() {
    return err::runtime_error("basic_chunk_input_stream: chunk not valid or no chunk at all!");
  }

  basic_chunk<Traits> chunk_;
  cursor_type cursor_;
};

using chunk = basic_chunk<chunk_traits>;
using mutable_chunk = basic_mutable_chunk<chunk_traits>;
using string_chunk = basic_string_chunk<chunk_traits>;
using chunk_input_stream = basic_chunk_input_stream<chunk_traits>;

}  // namespace chunks
