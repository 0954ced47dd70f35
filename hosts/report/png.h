// MIT License. Pictures in PNG files.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

using png_palette = std::array<uint32_t, 256>;  // 0xRRGGBB

// The bytes of a PNG file. It isn't compressed: noisy pictures with a palette lose a third at most, and that at a
// hundred times the time.
//   pixels    indices of colours, row by row from the top, `width` of them in a row
//   formats   "Portable Network Graphics Specification", W3C 2003; RFC 1950 and 1951
std::string png_of(int width, const std::vector<uint8_t>& pixels, const png_palette& colours);
