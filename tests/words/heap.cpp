// MIT License. The program's operator new, in a file of its own so that no caller sees into it.
#include "tests/words/heap.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int64_t> count{0};

constexpr int64_t never = -1;
constexpr int64_t done = -2;
thread_local int64_t left_before_failure = never;

// Counts an allocation, and throws where it is the one to fail.
void before_allocation() {
  count.fetch_add(1, std::memory_order_relaxed);
  if (left_before_failure == 0) {
    left_before_failure = done;
    throw std::bad_alloc();
  }
  if (left_before_failure > 0) --left_before_failure;
}

}  // namespace

int64_t allocation_count() {
  return count.load(std::memory_order_relaxed);
}

failing_allocation::failing_allocation(int64_t before) {
  left_before_failure = before;
}
failing_allocation::~failing_allocation() {
  left_before_failure = never;
}
bool failing_allocation::has_failed() const {
  return left_before_failure == done;
}

// All forms are here: the library's defaults would call the first two, but a sanitizer brings forms of its own, whose
// memory is not free()'s to take.
void* operator new(size_t size) {
  before_allocation();
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void* operator new(size_t size, std::align_val_t alignment) {
  before_allocation();
  const auto unit = static_cast<size_t>(alignment);
  if (void* const memory = std::aligned_alloc(unit, (size + unit - 1) / unit * unit)) return memory;
  throw std::bad_alloc();
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void* operator new(size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  try {
    return operator new(size, alignment);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void* operator new[](size_t size) {
  return operator new(size);
}
void* operator new[](size_t size, const std::nothrow_t& tag) noexcept {
  return operator new(size, tag);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, size_t, std::align_val_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, size_t) noexcept {
  std::free(memory);
}
