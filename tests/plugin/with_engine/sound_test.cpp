// MIT License. Tests of the effect with its engine: that choices and keys are heard.
#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <functional>
#include <iterator>
#include <numbers>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "plugin/effect.h"
#include "tests/plugin/test_host.h"
#include "tests/words/heap.h"

namespace {

constexpr int32_t block_frames = 512;
constexpr int32_t first_sound = 3;

class Sound : public testing::Test {
 protected:
  Sound() : block(block_frames) {
    effect.vendorSpecific(handshake_id, 1, nullptr, 0.0F);
    effect.setParameter(parameter_octave_on, 0.0F);
    // A low voice of two partials; one period a block, so that blocks join without a click.
    for (size_t frame = 0; frame < block_frames; ++frame) {
      const double phase = 2.0 * std::numbers::pi * static_cast<double>(frame) / block_frames;
      block.left[frame] = static_cast<float>(0.3 * std::sin(phase) + 0.2 * std::sin(3.0 * phase));
    }
    block.right = block.left;
  }

  // Loudest sample of `count` blocks, NaN when one of them is.
  float peak_of_blocks(int32_t count) {
    float peak = 0.0F;
    for (int32_t run = 0; run < count; ++run) {
      block.run(effect.getAeffect());
      for (const float sample : block.out_left) peak = std::isnan(sample) ? sample : std::max(peak, std::abs(sample));
    }
    return peak;
  }

  test_host host;
  built_in_activation_gate gate;
  KesrelVocoder4TarvixEffect effect{&test_host::callback, gate};
  stereo_block block;
};

TEST_F(Sound, SingsTheHeldKeysAndFallsSilentWhenTheyAreReleased) {
  effect.select_preset_by_index(first_sound);
  EXPECT_GT(peak_of_blocks(20), 0.01F);
  EXPECT_NE(block.out_left, block.left);
  effect.set_pending_keys({});
  peak_of_blocks(600);
  EXPECT_LT(peak_of_blocks(5), 1e-3F);
}

// One random call of a host's or, from setParameterAutomated() on, of the window's.
void call_something(const std::string& bank, KesrelVocoder4TarvixEffect* effect, std::minstd_rand* random) {
  AEffect* const record = effect->getAeffect();
  const auto any = [&](unsigned count) { return static_cast<VstInt32>((*random)() % count); };
  const auto call = [&](VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0, void* pointer = nullptr) {
    record->dispatcher(record, opcode, index, value, pointer, 0.0F);
  };
  char text[256] = "a name that is long enough";
  void* image = nullptr;  // never read: another thread's call may end it at once
  std::string bytes = bank;
  const std::function<void()> calls[] = {
      [&] { call(effSetProgram, 0, any(26)); },
      [&] { call(effSetProgramName, 0, 0, text); },
      [&] { call(effGetProgramNameIndexed, any(30), 0, text); },
      [&] { call(effGetChunk, any(2), 0, &image); },
      [&] { call(effSetChunk, 0, static_cast<VstIntPtr>(bytes.size()), bytes.data()); },
      [&] { call(effVendorSpecific, handshake_id, 1); },
      [&] { record->setParameter(record, any(3), 1.0F); },
      [&] { effect->setParameterAutomated(any(3), 0.0F); },
      [&] { effect->select_preset_by_index(any(70)); },
      [&] {
        effect->set_pending_keys({1, 0, static_cast<uint8_t>(any(2))});
      },
  };
  calls[any(std::size(calls))]();
}

// For the thread sanitizer, and for state that is whole in the end.
TEST_F(Sound, SingsOnWhileThreeHostThreadsDoEverythingAtRandom) {
  void* image = nullptr;
  const VstInt32 size = effect.getChunk(&image, false);
  const std::string bank(static_cast<const char*>(image), static_cast<size_t>(size));
  std::atomic<bool> done{false};
  std::vector<std::thread> threads;
  for (const unsigned seed : {1U, 2U, 3U}) {
    threads.emplace_back([&, seed] {
      std::minstd_rand random(seed);
      for (int32_t round = 0; round < 300 || !done.load(); ++round) {
        call_something(bank, &effect, &random);
        std::this_thread::yield();
      }
    });
  }
  const float peak = peak_of_blocks(60);
  done.store(true);
  for (std::thread& thread : threads) thread.join();
  EXPECT_FALSE(std::isnan(peak));
  EXPECT_GT(peak, 0.0F);
  std::string stored = bank;
  effect.setChunk(stored.data(), size, false);
  EXPECT_EQ(effect.getChunk(&image, false), size);
  EXPECT_EQ(std::string(static_cast<const char*>(image), stored.size()), bank);
}

TEST_F(Sound, ReachesForNoHeapInAnOrdinaryBlock) {
  for (const int32_t row : {0, first_sound}) {
    effect.select_preset_by_index(row);
    peak_of_blocks(5);
    const int64_t before = allocation_count();
    effect.setParameter(parameter_octave_on, row == 0 ? 0.0F : 1.0F);
    peak_of_blocks(20);
    EXPECT_EQ(allocation_count(), before) << "row " << row;
  }
}

}  // namespace
