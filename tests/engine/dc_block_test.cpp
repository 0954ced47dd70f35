// MIT License.
#include "engine/dc_block.h"

#include <gtest/gtest.h>

#include <limits>

#include "dsp/convert.h"
#include "tests/engine/engine_words.h"

namespace {

// One sample after the other, in the fixed point of 15 bits.
waveform plain_dc_block(waveform samples) {
  uint32_t last_input = 0;
  uint32_t accumulator = 0;
  float last_output = 0.0F;
  for (float& sample : samples) {
    const uint32_t input = static_cast<uint32_t>(truncate_to_int32(sample * 32767.0F)) << 15U;
    const auto sum = static_cast<int32_t>(input + (accumulator - last_input));
    const int32_t leaked = truncate_to_int32(static_cast<float>(sum) - last_output * 32.0F);
    last_input = input;
    accumulator = static_cast<uint32_t>(leaked);
    last_output = static_cast<float>(leaked >> 15);
    sample = last_output * 3.051851e-05F;
  }
  return samples;
}

void expect_plain_loop(const waveform& modulator, const waveform& carrier) {
  const auto n = static_cast<int32_t>(modulator.size());
  waveform m = modulator, c = carrier, alone = modulator;
  dc_block_pair(m.data(), c.data(), n);
  dc_block(alone.data(), n);
  EXPECT_EQ(m, plain_dc_block(modulator)) << n;
  EXPECT_EQ(c, plain_dc_block(carrier)) << n;
  EXPECT_EQ(alone, m) << n;
}

TEST(DcBlock, EqualsAPlainLoopAtEveryLevelAndLength) {
  for (const float level : {0.0001F, 0.01F, 1.0F, 3.0F, 1e6F}) {  // the last two wrap
    for (const size_t n : {1U, 2U, 3U, 4U, 5U, 7U, 64U, 1023U, 1024U}) {
      expect_plain_loop(noise(n, level, 1), noise(n, 0.5F, 2));
    }
  }
}

TEST(DcBlock, EqualsAPlainLoopAfterSamplesThatAreNoNumbers) {
  waveform hot = noise(256, 0.5F);
  hot[3] = std::numeric_limits<float>::quiet_NaN();
  hot[90] = std::numeric_limits<float>::infinity();
  hot[91] = -std::numeric_limits<float>::infinity();
  expect_plain_loop(hot, noise(256, 0.9F, 2));
}

}  // namespace
