// MIT License. Views of bytes that are shared by reference count instead of being copied.
#pragma once

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <utility>

#include "support/memory/quick_allocator.h"
#include "support/memory/reference.h"

namespace memory {

// A view of bytes that it doesn't own: its creator keeps them alive. May also be used uncounted, on the stack.
//
// Counts are atomic; the bytes are not guarded and must only be read once a block is shared.
class data : public pooled<data> {
 public:
  data() = default;
  data(const void* bytes, uint64_t size) : bytes_(static_cast<uint8_t*>(const_cast<void*>(bytes))), size_(size) {}
  data(const data&) = delete;
  data& operator=(const data&) = delete;
  virtual ~data() = default;

  const uint8_t* bytes() const { return bytes_; }
  uint64_t size() const { return size_; }

  void add_reference() { references_.fetch_add(1, std::memory_order_relaxed); }
  void release_reference() {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }

 protected:
  uint8_t* bytes_ = nullptr;  // written through by the subclass that owns them alone
  uint64_t size_ = 0;

 private:
  std::atomic<uint64_t> references_{0};
};

using data_reference = reference<data>;

// A window on part of another block's bytes, which it keeps alive.
class child_data_reference : public data, public pooled<child_data_reference> {
 public:
  // The `size` bytes from `start` on are within `parent`.
  child_data_reference(data_reference parent, const uint8_t* start, uint64_t size)
      : data(start, size), parent_(std::move(parent)) {}

  const data& parent() const { return *parent_; }

  using pooled<child_data_reference>::operator new;
  using pooled<child_data_reference>::operator delete;

 private:
  data_reference parent_;
};

// Bytes that can be written.
class mutable_data : public data {
 public:
  // Sets the capacity in bytes, truncating a block that is larger.
  virtual void reserve(uint64_t capacity) = 0;
};

// Owns its bytes.
template <typename Allocator = std::allocator<uint8_t>>
class mutable_data_ex : public mutable_data, public pooled<mutable_data_ex<Allocator>> {
 public:
  mutable_data_ex() = default;
  // An empty block with room for `capacity` bytes.
  explicit mutable_data_ex(uint64_t capacity) { mutable_data_ex::reserve(capacity); }
  ~mutable_data_ex() override { free_buffer(); }

  void reserve(uint64_t capacity) override {
    const uint64_t kept = std::min(this->size_, capacity);
    uint8_t* larger = nullptr;
    if (capacity > 0) {
      larger = allocator_.allocate(static_cast<size_t>(capacity));
      std::copy_n(this->bytes_, kept, larger);
    }
    free_buffer();
    this->bytes_ = larger;
    this->size_ = kept;
    capacity_ = capacity;
  }

  // Appends a copy of `count` bytes. A block that has to grow takes twice the room that it then needs.
  void append(const void* bytes, uint64_t count) {
    if (count == 0) return;
    const uint64_t wanted = this->size_ + count;
    if (wanted > capacity_) reserve(2 * wanted);
    std::copy_n(static_cast<const uint8_t*>(bytes), count, this->bytes_ + this->size_);
    this->size_ = wanted;
  }

  // Sets the size, up to the capacity. Bytes that this adds are not initialised.
  void resize(uint64_t size) { this->size_ = std::min(size, capacity_); }

  uint8_t* writable_bytes() { return this->bytes_; }
  uint64_t capacity() const { return capacity_; }

  using pooled<mutable_data_ex>::operator new;
  using pooled<mutable_data_ex>::operator delete;

 private:
  void free_buffer() {
    if (this->bytes_ != nullptr) allocator_.deallocate(this->bytes_, static_cast<size_t>(capacity_));
  }

  Allocator allocator_;
  uint64_t capacity_ = 0;
};

using byte_block = mutable_data_ex<>;

// The end of the block that owns the bytes of `block`: a reader may read past its window, but never past that.
const uint8_t* end_of_owner(const data& block);

}  // namespace memory
