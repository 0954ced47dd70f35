// MIT License. The program's operator new, in a file of its own so that no caller sees into it.
#include "tests/words/heap.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int64_t> count{0};

constexpr int64_t k_never = -1;
constexpr int64_t k_done = -2;
thread_local int64_t left_before_failure = k_never;

}  // namespace

int64_t allocation_count() {
  return count.load(std::memory_order_relaxed);
}

failing_allocation::failing_allocation(int64_t before) {
  left_before_failure = before;
}
failing_allocation::~failing_allocation() {
  left_before_failure = k_never;
}
bool failing_allocation::has_failed() const {
  return left_before_failure == k_done;
}

void* operator new(size_t size) {
  count.fetch_add(1, std::memory_order_relaxed);
  if (left_before_failure == 0) {
    left_before_failure = k_done;
    throw std::bad_alloc();
  }
  if (left_before_failure > 0) --left_before_failure;
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}
