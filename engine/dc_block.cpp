// MIT License.
#include "engine/dc_block.h"

#include "dsp/convert.h"

namespace {

constexpr float full_scale = 32767.0F;
constexpr float step = 3.051851e-05F;  // 1 / full_scale
constexpr uint32_t fraction_bits = 15;
constexpr float leak = 32.0F;  // 2^fraction_bits / 1024: what the accumulator loses per step of the output

}  // namespace

void dc_block(float* samples, int32_t n) {
  uint32_t last_input = 0;
  uint32_t accumulator = 0;
  float last_output = 0.0F;  // a whole number
  for (int32_t i = 0; i < n; ++i) {
    const uint32_t input = static_cast<uint32_t>(truncate_to_int32(samples[i] * full_scale)) << fraction_bits;
    const auto sum = static_cast<int32_t>(input + (accumulator - last_input));
    const int32_t leaked = truncate_to_int32(static_cast<float>(sum) - last_output * leak);
    last_input = input;
    accumulator = static_cast<uint32_t>(leaked);
    last_output = static_cast<float>(leaked >> fraction_bits);
    samples[i] = last_output * step;
  }
}
