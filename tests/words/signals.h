// MIT License. Test signals.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

// White noise in -level..level from a fixed seed.
inline std::vector<float> noise(size_t count, float level = 1.0F, uint32_t seed = 1) {
  std::vector<float> out(count);
  for (float& sample : out) {
    seed = seed * 1664525U + 1013904223U;
    sample = level * (static_cast<float>(seed >> 8) / 8388608.0F - 1.0F);
  }
  return out;
}
