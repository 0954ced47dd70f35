// MIT License. Ten minutes of the worst input through every algorithm.
#include <gtest/gtest.h>

#include <limits>

#include "tests/engine/engine_words.h"

namespace {

// The sanitizers slow the engine down by a factor of ten and more.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int k_seconds = 10;
#else
constexpr int k_seconds = 600;
#endif
constexpr int32_t k_block = 490;
constexpr int k_blocks_per_second = 90;

class Endurance : public testing::TestWithParam<int> {};

// One block of noise, silence, bad numbers, or noise with bad numbers strewn in, in turn by the second.
void fill(int second, uint32_t seed, waveform* block) {
  const float bad[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), -1e30F};
  switch (second % 4) {
    case 0:
      *block = noise(k_block, 1.0F, seed);
      break;
    case 1:
      *block = silence(k_block);
      break;
    case 2:
      block->assign(k_block, bad[static_cast<size_t>(second / 4) % 2]);
      break;
    default:
      *block = noise(k_block, 1.0F, seed);
      for (size_t i = seed % 7; i < k_block; i += 61) (*block)[i] = bad[i % 2];
  }
}

TEST_P(Endurance, NeverMakesABadSample) {
  sound_values sound = plain_sound(static_cast<float>(GetParam()));
  sound[value_dry_carrier_gain] = 0.5F;
  sound[value_dry_modulator_gain] = 0.5F;
  sound[value_sibilance_on] = 1.0F;
  sound[value_noise_on] = 1.0F;
  sound[value_reverb_level] = 1.0F;
  sound[value_reverb_size] = 1.0F;
  const instance_ptr instance = make_instance();
  waveform voice, carrier;
  float loudest = 0.0F;
  for (int second = 0; second < k_seconds; ++second) {
    sound[value_internal_carrier] = second % 8 < 5 ? 1.0F : 0.0F;
    for (const int32_t note : {40, 52, 59}) {
      second % 3 == 0 ? vocoder_note_on(note, 127, instance.get()) : vocoder_note_off(note, 0, instance.get());
    }
    for (int block = 0; block < k_blocks_per_second; ++block) {
      const auto seed = static_cast<uint32_t>(second * k_blocks_per_second + block + 1);
      fill(second, seed, &voice);
      fill(second + block / 40, seed * 7, &carrier);
      const stereo out = run(sound, voice, carrier, k_block, instance.get(), {.chorus = 1, .reverb = 1});
      ASSERT_TRUE(all_finite(out.left) && all_finite(out.right)) << "second " << second;
      loudest = std::max({loudest, peak(out.left), peak(out.right)});
    }
  }
  EXPECT_GT(loudest, 0.01F);
  EXPECT_LT(loudest, 1000.0F);
}

INSTANTIATE_TEST_SUITE_P(Mode, Endurance, testing::ValuesIn(all_modes));

}  // namespace
