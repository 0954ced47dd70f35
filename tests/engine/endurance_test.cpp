// MIT License. Minutes of the worst input through every algorithm.
#include <gtest/gtest.h>

#include "tests/engine/engine_words.h"

namespace {

constexpr int pattern_seconds = 24;  // after which inputs, carriers and notes meet in the same way again
constexpr int32_t block_samples = 490;
constexpr int blocks_per_second = 90;

// No algorithm remembers for longer than some seconds. What is around them, counters and the reverb among it, is the
// same for all, and gets its ten minutes under the quickest of them. The sanitizers slow the engine down by a factor of
// ten and more.
int seconds_of(int mode) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  constexpr int ten_minutes = pattern_seconds;
#else
  constexpr int ten_minutes = 25 * pattern_seconds;
#endif
  return mode == 1 ? ten_minutes : pattern_seconds;
}

class Endurance : public testing::TestWithParam<int> {
 protected:
  Endurance() {
    sound[value_dry_carrier_gain] = sound[value_dry_modulator_gain] = 0.5F;
    sound[value_sibilance_on] = sound[value_noise_on] = 1.0F;
    sound[value_reverb_level] = sound[value_reverb_size] = 1.0F;
  }

  // One block of noise, silence, spoilt samples, or noise with spoilt samples strewn in, in turn by the second.
  waveform signal(int second, uint32_t seed) const {
    waveform block = noise(block_samples, second % 2 == 0 || second % 4 == 3 ? 1.0F : 0.0F, seed);
    if (second % 4 == 2) block.assign(block_samples, spoilt[static_cast<size_t>(second / 4) % spoilt.size()]);
    if (second % 4 == 3) {
      for (size_t i = seed % 7; i < block_samples; i += 61) block[i] = spoilt[i % spoilt.size()];
    }
    return block;
  }

  // Plays one second of the pattern and gives its peak.
  float play(int second) {
    float loudest = 0.0F;
    sound[value_internal_carrier] = second % 8 < 5 ? 1.0F : 0.0F;
    for (const int32_t note : {40, 52, 59}) {
      second % 3 == 0 ? vocoder_note_on(note, 127, instance.get()) : vocoder_note_off(note, 0, instance.get());
    }
    for (int block = 0; block < blocks_per_second; ++block) {
      const auto seed = static_cast<uint32_t>(second * blocks_per_second + block + 1);
      const stereo out = run(sound, signal(second, seed), signal(second + block / 40, seed * 7), block_samples,
                             instance.get(), {.chorus = 1, .reverb = 1});
      EXPECT_TRUE(all_finite(out.left) && all_finite(out.right)) << "second " << second;
      loudest = std::max({loudest, peak(out.left), peak(out.right)});
    }
    return loudest;
  }

  sound_values sound = plain_sound(static_cast<float>(GetParam()));
  instance_ptr instance = make_instance();
  std::array<float, 3> spoilt = {NAN, INFINITY, -INFINITY};
};

TEST_P(Endurance, NeverMakesABadSample) {
  float loudest = 0.0F;
  for (int second = 0; second < seconds_of(GetParam()); ++second) loudest = std::max(loudest, play(second));
  EXPECT_GT(loudest, 0.01F);
  EXPECT_LT(loudest, 1000.0F);
}

INSTANTIATE_TEST_SUITE_P(Mode, Endurance, testing::ValuesIn(all_modes));

}  // namespace
