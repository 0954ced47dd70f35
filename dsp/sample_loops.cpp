// MIT License. Source bytes of the sample loops, as embedded from resources/loops/.
#include "dsp/sample_loops.h"

#include <algorithm>
#include <iterator>

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

struct embedded_run {
  const signed char* bytes;
  const unsigned int* size;
};

constexpr embedded_run embedded_runs[] = {
    {kesrel_loop0, &kesrel_loop0_size}, {kesrel_loop1, &kesrel_loop1_size}, {kesrel_loop2, &kesrel_loop2_size},
    {kesrel_loop3, &kesrel_loop3_size}, {kesrel_loop4, &kesrel_loop4_size}, {kesrel_loop5, &kesrel_loop5_size},
};
static_assert(std::size(embedded_runs) == noise_loop);

}  // namespace

std::span<const signed char> sample_loop_source(int32_t number) {
  if (number < 0 || number >= noise_loop) return {};
  const embedded_run& run = embedded_runs[number];
  const auto length = static_cast<size_t>(sample_loops[static_cast<size_t>(number)].source_length);
  return {run.bytes, std::min<size_t>(length, *run.size)};
}
