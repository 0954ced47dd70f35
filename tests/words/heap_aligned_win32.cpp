// MIT License. The forms of the program's operator new for types with a large alignment, whose memory is not free()'s.
#include <malloc.h>

#include <new>

#include "tests/words/heap.h"

void* operator new(size_t size, std::align_val_t alignment) {
  before_allocation();
  if (void* const memory = _aligned_malloc(size, static_cast<size_t>(alignment))) return memory;
  throw std::bad_alloc();
}
void* operator new(size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
  try {
    return operator new(size, alignment);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}
void operator delete(void* memory, std::align_val_t) noexcept {
  _aligned_free(memory);
}
void operator delete(void* memory, size_t, std::align_val_t) noexcept {
  _aligned_free(memory);
}
