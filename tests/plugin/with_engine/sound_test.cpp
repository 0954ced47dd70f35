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

// One random call of a host's or of the window's.
void call_something(const std::string& bank, KesrelVocoder4TarvixEffect* effect, std::minstd_rand* random) {
  constexpr VstInt32 opcodes[] = {effSetProgram, effSetProgramName, effGetProgramNameIndexed, effGetChunk, effSetChunk};
  const auto any = [&](size_t count) { return static_cast<VstInt32>((*random)() % count); };
  AEffect* const record = effect->getAeffect();
  std::string bytes = bank;  // also serves as a name and as room for answers, which are never read
  const VstInt32 opcode = opcodes[any(std::size(opcodes))];
  const VstIntPtr value = opcode == effSetChunk ? static_cast<VstIntPtr>(bytes.size()) : any(26);
  const std::function<void()> calls[] = {
      [&] { record->dispatcher(record, opcode, any(30), value, bytes.data(), 0.0F); },
      [&] { record->dispatcher(record, effVendorSpecific, handshake_id, 1, nullptr, 0.0F); },
      [&] { record->setParameter(record, any(3), 1.0F); },
      [&] { effect->setParameterAutomated(any(3), 0.0F); },
      [&] { effect->select_preset_by_index(any(70)); },
      [&] {
        effect->set_pending_keys({1, 0, static_cast<uint8_t>(any(2))});
      },
  };
  // Half of the calls are the first.
  calls[any(2) == 0 ? 0 : any(std::size(calls))]();
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
