// MIT License.
#include "engine/frame_arena.h"

namespace {

constexpr int32_t floats_per_cache_line = 16;

}  // namespace

float* frame_arena_take(int32_t count, frame_arena* arena) {
  if (count < 1 || count > arena->capacity - arena->used) return nullptr;
  float* const piece = arena->storage.data() + arena->used;
  const int32_t rounded = (count + floats_per_cache_line - 1) / floats_per_cache_line * floats_per_cache_line;
  arena->used += rounded;
  return piece;
}

void frame_arena_release(int32_t used, frame_arena* arena) {
  arena->used = used;
}
