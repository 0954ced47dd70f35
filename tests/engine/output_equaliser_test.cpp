// MIT License.
#include "engine/output_equaliser.h"

#include <gtest/gtest.h>

#include "dsp/processor.h"
#include "tests/engine/engine_words.h"

namespace {

output_equaliser fresh_equaliser(float gain_db) {
  output_equaliser equaliser;
  equaliser_prepare(44100.0F, nullptr, &equaliser);
  equaliser_set_gain(gain_db, &equaliser);
  return equaliser;
}

// The judge: one section over the whole signal, then the next.
void filter_plainly(std::array<eq_section, eq_bands>* sections, waveform* samples) {
  for (eq_section& s : *sections) {
    const float b0 = s.b0 / s.a0;
    const float b1 = s.b1 / s.a0;
    const float b2 = s.b2 / s.a0;
    const float a1 = s.a1 / s.a0;
    const float a2 = s.a2 / s.a0;
    for (float& x : *samples) {
      const float y = b0 * x + b1 * s.x1 + b2 * s.x2 - a1 * s.y1 - a2 * s.y2;
      s.x2 = s.x1;
      s.x1 = x;
      s.y2 = s.y1;
      s.y1 = y;
      x = y * s.gain;
    }
  }
}

// The same, sample by sample, with a fresh start after an overflow.
waveform recover_plainly(std::array<eq_section, eq_bands>* sections, const waveform& samples) {
  waveform out;
  for (const float sample : samples) {
    waveform one = {sample};
    filter_plainly(sections, &one);
    if (!std::isfinite(one[0])) {
      one[0] = 0.0F;
      for (eq_section& s : *sections) s.x1 = s.x2 = s.y1 = s.y2 = 0.0F;
    }
    out.push_back(one[0]);
  }
  return out;
}

class OutputEqualiser : public testing::TestWithParam<bool> {};

TEST_P(OutputEqualiser, EqualsSectionAfterSectionBitForBitAtAnyBlockLengthEvenAfterAnOverflow) {
  const bool avx2 = GetParam();
  if (avx2 && !processor_has_avx2()) GTEST_SKIP() << "The processor has no AVX2.";
  waveform hot_left = noise(2000, 1.0F, 1);
  waveform hot_right = noise(2000, 1.0F, 2);
  for (const size_t at : {0U, 700U, 701U, 705U, 1990U, 1999U}) hot_left[at] = 3e38F;
  for (const size_t at : {702U, 1200U}) hot_right[at] = hot_right[at + 1] = -2e38F;
  output_equaliser plain = fresh_equaliser(3.0F);
  const waveform plain_left = recover_plainly(&plain.left, hot_left);
  const waveform plain_right = recover_plainly(&plain.right, hot_right);
  ASSERT_EQ(plain_left[700], 0.0F);
  ASSERT_NE(plain_left[699], 0.0F);
  ASSERT_NE(plain_left[702], 0.0F);
  for (const size_t block : {1U, 2U, 3U, 5U, 9U, 10U, 11U, 12U, 18U, 19U, 20U, 21U, 64U, 701U, 2000U}) {
    output_equaliser equaliser = fresh_equaliser(3.0F);
    waveform left = hot_left;
    waveform right = hot_right;
    for (size_t start = 0; start < left.size(); start += block) {
      const auto n = static_cast<int32_t>(std::min(block, left.size() - start));
      equaliser_process_with(avx2, left.data() + start, right.data() + start, n, &equaliser);
      equaliser_process_with(avx2, left.data() + start, right.data() + start, 0, &equaliser);
    }
    ASSERT_EQ(left, plain_left) << block;
    ASSERT_EQ(right, plain_right) << block;
  }
}

INSTANTIATE_TEST_SUITE_P(Instructions, OutputEqualiser, testing::Bool(),
                         [](const auto& instructions) { return instructions.param ? "avx2" : "baseline"; });

}  // namespace
