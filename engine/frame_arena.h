// MIT License. Work memory of one frame, allocated as a stack without the heap.
#pragma once

#include <array>
#include <cstdint>

// Floats that the largest algorithm takes in one frame, with room to align each piece.
constexpr int32_t frame_arena_capacity = 34 * 1024;

struct frame_arena {
  alignas(64) std::array<float, frame_arena_capacity> storage{};
  int32_t capacity = frame_arena_capacity;  // a smaller value makes the arena run out sooner
  int32_t used = 0;
};

// Takes `count` floats, at least 1, aligned to 64 bytes and uninitialised.
//   returns   null when the arena hasn't that many left
float* frame_arena_take(int32_t count, frame_arena* arena);

// Rewinds to `used`, read from the arena earlier: frees everything taken since.
void frame_arena_release(int32_t used, frame_arena* arena);
