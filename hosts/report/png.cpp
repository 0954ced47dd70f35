// MIT License. Pictures in PNG files.
#include "hosts/report/png.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace {

constexpr std::array<uint32_t, 256> crc_steps = [] {
  std::array<uint32_t, 256> steps{};
  for (uint32_t i = 0; i < steps.size(); ++i) {
    uint32_t step = i;
    for (int bit = 0; bit < 8; ++bit) step = (step >> 1) ^ ((step & 1) != 0 ? 0xEDB88320U : 0U);
    steps[i] = step;
  }
  return steps;
}();

uint32_t crc_of(std::string_view bytes) {
  uint32_t crc = 0xFFFFFFFFU;
  for (const char c : bytes) crc = (crc >> 8) ^ crc_steps[(crc ^ static_cast<uint8_t>(c)) & 0xFF];
  return ~crc;
}

// Adler-32.
uint32_t sum_of(std::string_view bytes) {
  constexpr uint32_t modulus = 65521;
  uint32_t a = 1;
  uint32_t b = 0;
  for (const char c : bytes) {
    a = (a + static_cast<uint8_t>(c)) % modulus;
    b = (b + a) % modulus;
  }
  return b << 16 | a;
}

std::string big_endian(std::size_t number) {
  std::string bytes;
  for (const int shift : {24, 16, 8, 0}) bytes += static_cast<char>(number >> shift & 0xFF);
  return bytes;
}

std::string chunk(const std::string& kind, const std::string& body) {
  const std::string content = kind + body;
  return big_endian(body.size()) + content + big_endian(crc_of(content));
}

// A stream of stored blocks.
std::string stored(std::string_view bytes) {
  constexpr std::size_t longest_block = 65535;
  std::string stream = "\x78\x01";
  const uint32_t sum = sum_of(bytes);
  do {
    const std::string_view block = bytes.substr(0, longest_block);
    bytes.remove_prefix(block.size());
    stream += bytes.empty() ? '\1' : '\0';
    for (const std::size_t length : {block.size(), ~block.size()}) {
      stream += static_cast<char>(length & 0xFF);
      stream += static_cast<char>(length >> 8 & 0xFF);
    }
    stream += block;
  } while (!bytes.empty());
  return stream + big_endian(sum);
}

}  // namespace

std::string png_of(int width, const std::vector<uint8_t>& pixels, const png_palette& colours) {
  const auto columns = static_cast<std::size_t>(width);
  std::string palette;
  for (const uint32_t colour : colours) palette += big_endian(colour).substr(1);
  std::string rows;
  for (auto row = pixels.begin(); row != pixels.end(); row += width) {
    rows += '\0';  // no filter
    rows.append(row, row + width);
  }
  constexpr std::string_view eight_bit_palette("\x08\x03\0\0\0", 5);
  return "\x89PNG\r\n\x1a\n" +
         chunk("IHDR", big_endian(columns) + big_endian(pixels.size() / columns).append(eight_bit_palette)) +
         chunk("PLTE", palette) + chunk("IDAT", stored(rows)) + chunk("IEND", "");
}
