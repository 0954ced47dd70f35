// MIT License. Counts what the test program takes from the heap with new, and makes it run out of memory.
#pragma once

#include <cstdint>

// Allocations of all threads so far.
int64_t allocation_count();

// While it lives, one allocation of this thread fails: the one that follows `before` others. One at a time.
class failing_allocation {
 public:
  explicit failing_allocation(int64_t before);
  failing_allocation(const failing_allocation&) = delete;
  failing_allocation& operator=(const failing_allocation&) = delete;
  ~failing_allocation();

  // Whether it has come to that.
  bool has_failed() const;
};

// Counts an allocation, or fails it by std::bad_alloc. For the operators.
void before_allocation();
