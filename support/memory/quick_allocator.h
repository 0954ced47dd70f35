// MIT License. Pools of small objects, which keep their allocation off the general heap.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "support/synchronization/ticket_lock.h"

namespace memory {

// A pool of elements of one size. It takes blocks of elements from the heap and keeps them until it is destroyed.
//
// Any thread may allocate and release. While there are free elements both take a few atomic operations: an allocation
// may spin while another is running, a release never waits.
class quick_allocator_impl {
 public:
  // Bytes before a block's first element; the first word links the blocks.
  static constexpr size_t header_size = 16;
  // Room for the link inside a free element.
  static constexpr size_t link_size = sizeof(void*);

  //   element_size    bytes, at least 1
  //   block_elements  elements in a block, at least 1
  //   initial_blocks  blocks to begin with
  quick_allocator_impl(size_t element_size, size_t block_elements, size_t initial_blocks);
  // Frees all blocks, and reports to the debugger when elements are still handed out.
  ~quick_allocator_impl();
  quick_allocator_impl(const quick_allocator_impl&) = delete;
  quick_allocator_impl& operator=(const quick_allocator_impl&) = delete;

  // An element, aligned to 16 bytes. Throws std::bad_alloc when a new block cannot be allocated.
  void* allocate();
  // Returns an element to this pool.
  void release(void* element);

  size_t element_size() const { return element_size_; }
  size_t stride() const { return stride_; }
  size_t block_elements() const { return block_elements_; }
  size_t block_size() const { return block_size_; }

  // Counters; exact while no other thread is inside the pool.
  size_t bytes_in_use() const { return bytes_in_use_.load(std::memory_order_relaxed); }
  size_t bytes_reserved() const { return bytes_reserved_.load(std::memory_order_relaxed); }
  size_t free_count() const { return free_count_.load(std::memory_order_relaxed); }

 private:
  struct block_header {
    block_header* next;
  };
  struct free_element {
    free_element* next;
  };

  void add_block();
  free_element* pop();
  void push_chain(free_element* first, free_element* last);
  void report_memory_in_use() const;

  std::atomic<block_header*> blocks_{nullptr};
  std::atomic<free_element*> free_list_{nullptr};
  size_t element_size_;
  size_t stride_;  // the element size, rounded up to the alignment
  size_t block_elements_;
  size_t block_size_;
  std::atomic<size_t> bytes_in_use_{0};
  std::atomic<size_t> bytes_reserved_{0};
  std::atomic<size_t> free_count_{0};
  synchronization::ticket_lock lock_;
};

// All pools of the process. The process's own registry is never destroyed: a host may close its effects from static
// destructors, when an ordinary singleton's pools would be gone.
class allocator_registry {
 public:
  static allocator_registry& instance();
  allocator_registry();
  ~allocator_registry();
  allocator_registry(const allocator_registry&) = delete;
  allocator_registry& operator=(const allocator_registry&) = delete;

  // The smallest standard pool that serves `size` bytes, ignoring the other arguments; beyond 1024 bytes a new pool.
  quick_allocator_impl* get_pool(size_t size, size_t block_elements, size_t initial_blocks);
  quick_allocator_impl* make_pool(size_t size, size_t block_elements, size_t initial_blocks);

 private:
  synchronization::ticket_lock lock_;
  std::vector<std::unique_ptr<quick_allocator_impl>> pools_;  // the standard ones first
};

inline quick_allocator_impl* get_pool(size_t size, size_t block_elements, size_t initial_blocks) {
  return allocator_registry::instance().get_pool(size, block_elements, initial_blocks);
}
inline quick_allocator_impl* make_pool(size_t size, size_t block_elements, size_t initial_blocks) {
  return allocator_registry::instance().make_pool(size, block_elements, initial_blocks);
}
inline void* pool_allocate(quick_allocator_impl* pool) {
  return pool->allocate();
}
inline void pool_release(quick_allocator_impl* pool, void* element) {
  pool->release(element);
}

// Memory for objects of one type from the pool for their size. Requests of any other size, such as a derived class's,
// go to the general heap.
template <typename T>
class quick_allocator {
 public:
  static void* allocate(size_t size) {
    return size == served().size ? pool_allocate(served().pool) : ::operator new(size);
  }
  static void release(void* object, size_t size) {
    if (size == served().size) {
      pool_release(served().pool, object);
    } else {
      ::operator delete(object);
    }
  }

 private:
  struct pool_and_size {
    quick_allocator_impl* pool;
    size_t size;
  };
  static const pool_and_size& served() {
    static const pool_and_size pair{get_pool(sizeof(T), 1024, 0), sizeof(T)};
    return pair;
  }
};

// Base of a class T whose objects come from a pool.
template <typename T>
class pooled {
 public:
  static void* operator new(size_t size) { return quick_allocator<T>::allocate(size); }
  static void operator delete(void* object, size_t size) { quick_allocator<T>::release(object, size); }
};

}  // namespace memory
