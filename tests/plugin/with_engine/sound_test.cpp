// MIT License. Tests of the effect with its engine: that choices and keys are heard.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <numbers>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "plugin/effect.h"
#include "tests/plugin/test_host.h"
#include "tests/words/heap.h"

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

// One host thread's random calls, through the record but for what only the window does.
class careless_host_thread {
 public:
  careless_host_thread(unsigned seed, const std::string& bank, KesrelVocoder4TarvixEffect* effect)
      : random_(seed), bank_(bank), effect_(effect) {}

  void call_something() {
    char text[256] = "a name that is long enough";
    void* image = nullptr;
    const bool single = any(2) != 0;
    switch (any(14)) {
      case 0:
        call(effSetProgram, 0, any(26));
        break;
      case 1:
        call(effGetProgramName, 0, 0, text);
        break;
      case 2:
        call(effSetProgramName, 0, 0, text);
        break;
      case 3:
        call(effGetProgramNameIndexed, any(30), 0, text);
        break;
      case 4:
        call(effGetChunk, single, 0, &image);
        break;  // another thread's call may end the image at once
      case 5:
        call(effSetChunk, 0, static_cast<VstIntPtr>(bank_.size()), bank_.data());
        break;
      case 6:
        call(effVendorSpecific, k_handshake_id, 1);
        break;
      case 7:
        call(effSetBlockSize, 0, 64 << any(4));
        break;
      case 8:
        call(effMainsChanged, 0, any(2));
        break;
      case 9:
        effect_->getAeffect()->setParameter(effect_->getAeffect(), any(3), 1.0F);
        break;
      case 10:
        effect_->setParameterAutomated(any(3), 0.0F);
        break;
      case 11:
        effect_->select_preset_by_index(any(70));
        break;
      case 12:
        effect_->set_pending_keys({uint8_t{1}, 0, static_cast<uint8_t>(any(2))});
        break;
      default:
        EXPECT_GE(effect_->getMenuRows().size(), 67U);
        break;
    }
  }

 private:
  VstInt32 any(int count) { return static_cast<VstInt32>(random_() % static_cast<unsigned>(count)); }
  void call(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* ptr = nullptr) {
    AEffect* const record = effect_->getAeffect();
    record->dispatcher(record, opcode, index, value, ptr, 0.0F);
  }

  std::minstd_rand random_;
  std::string bank_;
  KesrelVocoder4TarvixEffect* effect_;
};

// For the thread sanitizer, with all that an engine shares with the shell.
TEST_F(Sound, SingsOnWhileThreeHostThreadsDoEverythingAtRandom) {
  void* image = nullptr;
  const VstInt32 size = effect.getChunk(&image, false);
  const std::string bank(static_cast<const char*>(image), static_cast<size_t>(size));
  std::atomic<bool> done{false};
  std::vector<std::thread> threads;
  for (const unsigned seed : {1U, 2U, 3U}) {
    threads.emplace_back([&, seed] {
      careless_host_thread host_thread(seed, bank, &effect);
      for (int32_t round = 0; round < 300 || !done.load(); ++round) {
        host_thread.call_something();
        std::this_thread::yield();
      }
    });
  }
  const float peak = peak_of_blocks(60);
  done.store(true);
  for (std::thread& thread : threads) thread.join();
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
