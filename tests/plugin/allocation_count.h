// MIT License. Counts what the test program takes from the heap with new.
#pragma once

#include <cstdint>

// Allocations of all threads so far.
int64_t allocation_count();
