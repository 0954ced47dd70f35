// MIT License. Source bytes of the sample loops, as embedded from resources/loops/.
#include "dsp/sample_loops.h"

#include <algorithm>

// Declarations of what the build generates.
extern const signed char kesrel_loop0[];
extern const signed char kesrel_loop1[];
extern const signed char kesrel_loop2[];
extern const signed char kesrel_loop3[];
extern const signed char kesrel_loop4[];
extern const signed char kesrel_loop5[];
extern const unsigned int kesrel_loop0_size;
extern const unsigned int kesrel_loop1_size;
extern const unsigned int kesrel_loop2_size;
extern const unsigned int kesrel_loop3_size;
extern const unsigned int kesrel_loop4_size;
extern const unsigned int kesrel_loop5_size;

namespace {

std::span<const signed char> embedded_bytes(int32_t number) {
  switch (number) {
    case 0:
      return {kesrel_loop0, kesrel_loop0_size};
    case 1:
      return {kesrel_loop1, kesrel_loop1_size};
    case 2:
      return {kesrel_loop2, kesrel_loop2_size};
    case 3:
      return {kesrel_loop3, kesrel_loop3_size};
    case 4:
      return {kesrel_loop4, kesrel_loop4_size};
    case 5:
      return {kesrel_loop5, kesrel_loop5_size};
    default:
      return {};
  }
}

}  // namespace

std::span<const signed char> sample_loop_source(int32_t number) {
  const auto bytes = embedded_bytes(number);
  if (bytes.empty()) return {};
  const auto length = static_cast<size_t>(sample_loops[static_cast<size_t>(number)].source_length);
  return bytes.first(std::min(length, bytes.size()));
}
