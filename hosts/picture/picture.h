// MIT License. A picture in memory, and as a PNG file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct picture {
  int width = 0;
  int height = 0;
  std::vector<uint32_t> pixels{};  // row by row from the top, 0xRRGGBB

  bool operator==(const picture&) const = default;
};

// Throws failure when the file cannot be written; one that exists there stays as it was.
void write_png(const std::string& path, const picture& content);
