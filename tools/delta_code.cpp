// MIT License. The delta code of the sample loops.
#include "tools/delta_code.h"

#include <algorithm>
#include <cmath>

namespace {

void advance(int8_t byte, double scale, float* sum) {
  *sum = static_cast<float>(static_cast<double>(byte) * scale + static_cast<double>(*sum));
}

}  // namespace

std::vector<int8_t> delta_encode(const std::vector<int16_t>& source, double scale) {
  std::vector<int8_t> bytes;
  bytes.reserve(source.size());
  float sum = 0.0F;
  for (const int16_t sample : source) {
    const double wanted = std::round((sample - static_cast<double>(sum)) / scale);
    bytes.push_back(static_cast<int8_t>(std::clamp(wanted, -127.0, 127.0)));
    advance(bytes.back(), scale, &sum);
  }
  return bytes;
}

std::vector<float> delta_decode(const std::vector<int8_t>& bytes, double scale) {
  std::vector<float> entries;
  entries.reserve(bytes.size());
  float sum = 0.0F;
  for (const int8_t byte : bytes) {
    advance(byte, scale, &sum);
    entries.push_back(sum * 6.1035156e-05F);
  }
  return entries;
}
