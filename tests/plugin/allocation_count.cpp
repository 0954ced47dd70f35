// MIT License. The program's operator new, counting. It stands in a file of its own so that no caller sees into it.
#include "tests/plugin/allocation_count.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<int64_t> count{0};

}  // namespace

int64_t allocation_count() {
  return count.load(std::memory_order_relaxed);
}

void* operator new(size_t size) {
  count.fetch_add(1, std::memory_order_relaxed);
  if (void* const memory = std::malloc(size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
  std::free(memory);
}
