// MIT License. Tests of the effect with its engine: that choices and keys are heard.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <numbers>
#include <thread>

#include "plugin/effect.h"
#include "tests/plugin/allocation_count.h"
#include "tests/plugin/test_host.h"

namespace {

constexpr int32_t k_block_frames = 512;
constexpr int32_t k_first_sound = 3;

class Sound : public testing::Test {
 protected:
  Sound() : block(k_block_frames) {
    effect.vendorSpecific(k_handshake_id, 1, nullptr, 0.0F);
    effect.setParameter(k_octave_on, 0.0F);
    // A low voice of two partials; one period a block, so that blocks join without a click.
    for (size_t frame = 0; frame < k_block_frames; ++frame) {
      const double phase = 2.0 * std::numbers::pi * static_cast<double>(frame) / k_block_frames;
      block.left[frame] = static_cast<float>(0.3 * std::sin(phase) + 0.2 * std::sin(3.0 * phase));
    }
    block.right = block.left;
  }

  // Loudest sample of `count` blocks; NaN if there is any.
  float peak_of_blocks(int32_t count) {
    float peak = 0.0F;
    for (int32_t run = 0; run < count; ++run) {
      block.run(effect.getAeffect());
      for (const float sample : block.out_left) peak = std::isnan(sample) ? sample : std::max(peak, std::abs(sample));
    }
    return peak;
  }

  void hold_no_keys() { effect.set_pending_keys({}); }

  test_host host;
  built_in_activation_gate gate;
  KesrelVocoder4TarvixEffect effect{&test_host::callback, gate};
  stereo_block block;
};

TEST_F(Sound, SingsTheFirstChordWithTheChosenSound) {
  effect.select_preset_by_index(k_first_sound);
  EXPECT_GT(peak_of_blocks(20), 0.01F);
  EXPECT_NE(block.out_left, block.left);
}

TEST_F(Sound, FallsSilentWhenTheKeysAreLetGo) {
  effect.select_preset_by_index(k_first_sound);
  peak_of_blocks(20);
  hold_no_keys();
  peak_of_blocks(600);
  EXPECT_LT(peak_of_blocks(5), 1e-3F);
}

TEST_F(Sound, SingsAgainAtANewRateOnceAnotherSoundIsChosen) {
  effect.select_preset_by_index(k_first_sound);
  peak_of_blocks(5);
  effect.setSampleRate(96000.0F);
  std::ranges::fill(block.out_left, 9.0F);
  EXPECT_EQ(peak_of_blocks(1), 9.0F) << "without a sound the outputs are left alone";
  effect.select_preset_by_index(k_first_sound + 1);
  peak_of_blocks(1);
  const float peak = peak_of_blocks(20);
  EXPECT_GT(peak, 0.01F);
  EXPECT_LT(peak, 9.0F);
}

// For the thread sanitizer, with all that an engine shares with the shell.
TEST_F(Sound, SingsOnWhileAnotherThreadWorksOnProgramsAndState) {
  std::atomic<bool> done{false};
  std::thread host_thread([&] {
    for (int32_t round = 0; round < 200 || !done.load(); ++round) {
      effect.setProgram(round % 24);
      effect.setParameter(round % 3, static_cast<float>(round % 2));
      void* image = nullptr;
      const VstInt32 size = effect.getChunk(&image, round % 2 == 0);
      effect.setChunk(image, size, round % 2 == 0);
      std::this_thread::yield();
    }
  });
  const float peak = peak_of_blocks(60);
  done.store(true);
  host_thread.join();
  EXPECT_FALSE(std::isnan(peak));
  EXPECT_GT(peak, 0.0F);
}

TEST_F(Sound, ReachesForNoHeapInAnOrdinaryBlock) {
  effect.select_preset_by_index(k_first_sound);
  peak_of_blocks(5);
  const int64_t before = allocation_count();
  effect.setParameter(k_octave_on, 1.0F);
  peak_of_blocks(20);
  EXPECT_EQ(allocation_count(), before);
}

}  // namespace
