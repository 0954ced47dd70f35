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

}  // namespace

void before_allocation() {
  count.fetch_add(1, std::memory_order_relaxed);
  if (left_before_failure == 0) {
    left_before_failure = done;
    throw std::bad_alloc();
  }
  if (left_before_failure > 0) --left_before_failure;
}

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

// All forms are replaced: the library's would call the first one, but a sanitizer brings forms of its own, whose memory
// must not be given to free().
void* operator new(size_t size) {
  before_allocation();
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void* operator new(size_t size, const std::nothrow_t&) noexcept {
  try {
    return operator new(size);
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
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, size_t) noexcept {
  std::free(memory);
}
