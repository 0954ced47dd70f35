// MIT License. Counts what reaches the heap while blocks run, and makes it fail.
#include <gtest/gtest.h>

#include "tests/engine/engine_words.h"
#include "tests/words/heap.h"

namespace {

TEST(OrdinaryBlock, ReachesNoHeapInAnyMode) {
  for (const float rate : {44100.0F, 48000.0F}) {
    const instance_ptr instance = make_instance(rate);
    for (const int32_t note : {48, 52, 55}) vocoder_note_on(note, 127, instance.get());
    waveform voice = noise(1024, 0.3F);
    waveform left(1024);
    waveform right(1024);
    const float* const inputs[4] = {voice.data(), nullptr, nullptr, nullptr};
    float* const outputs[2] = {left.data(), right.data()};
    // The longest block sizes the buffers.
    vocoder_process(plain_sound(2.0F), 0, 0, 1024, inputs, outputs, instance.get());
    for (const int mode : all_modes) {
      sound_values sound = plain_sound(static_cast<float>(mode));
      sound[value_reverb_level] = 0.5F;
      sound[value_reverb_size] = static_cast<float>(mode) / 15.0F;
      const int64_t before = allocation_count();
      for (const int32_t frames : {1024, 64, 512, 1000, 1})
        vocoder_process(sound, 1, 1, frames, inputs, outputs, instance.get());
      vocoder_note_off(52, 0, instance.get());
      vocoder_note_on(52, 1, instance.get());
      EXPECT_EQ(allocation_count(), before) << "mode " << mode << " at " << rate;
    }
  }
}

TEST(FirstBlock, ReachesTheHeapForItsBuffersAlone) {
  const instance_ptr instance = make_instance();
  vocoder_note_on(48, 127, instance.get());
  sound_values sound = plain_sound(2.0F);
  sound[value_reverb_level] = 0.5F;
  const auto allocations_of_block = [&](size_t frames) {
    const int64_t before = allocation_count();
    waveform left(frames), right(frames);
    float* const outputs[2] = {left.data(), right.data()};
    vocoder_process(sound, 1, 1, static_cast<int32_t>(frames), nullptr, outputs, instance.get());
    return allocation_count() - before;
  };
  const int64_t first = allocations_of_block(512);
  EXPECT_EQ(first, allocations_of_block(1024)) << "which grows the buffers and nothing else";
  EXPECT_LT(allocations_of_block(1024), first);
}

// Runs `use` with its allocation `number`, counted from 0, failing.
//   returns  whether it came to that
template <typename Use>
bool with_failing_allocation(int64_t number, Use use) {
  const failing_allocation failure(number);
  use();
  return failure.has_failed();
}

class ScarceMemory : public testing::TestWithParam<float> {
 protected:
  int32_t play(int32_t sound_number, int32_t frames) {
    static constexpr uint8_t key[] = {1};
    const float* const inputs[4] = {voice.data(), nullptr, nullptr, nullptr};
    float* const outputs[2] = {left.data(), right.data()};
    return vocoder_process_sound(0, 1, 1, sound_number, key, frames, inputs, outputs, instance.get());
  }
  void start() {
    instance = make_instance(GetParam());
    vocoder_note_on(48, 127, instance.get());
    for (int block = 0; block < 4; ++block) ASSERT_EQ(play(1, 512), 0);
  }

  waveform voice = noise(4096, 0.3F);
  waveform left = silence(4096);
  waveform right = silence(4096);
  instance_ptr instance;
};

TEST_P(ScarceMemory, IsReportedAtTheStartWithoutAnException) {
  int64_t number = 0;
  const auto begin = [&] {
    instance = make_instance(GetParam());
    play(1, 512);
  };
  for (; with_failing_allocation(number, begin); ++number) {
    if (number == 0) {
      EXPECT_EQ(instance, nullptr);
      continue;
    }
    vocoder_note_on(48, 127, instance.get());
    for (int block = 0; block < 4; ++block) EXPECT_EQ(play(1, 512), 0) << number;
    EXPECT_GT(peak(left), 0.001F) << number;
    EXPECT_TRUE(all_finite(left) && all_finite(right)) << number;
  }
  EXPECT_GT(number, 6);  // the instance and its buffers
}

TEST_P(ScarceMemory, DoesNotKeepANewSoundOut) {
  start();
  play(1, 512);
  const waveform steady = left;
  start();
  EXPECT_FALSE(with_failing_allocation(0, [&] { EXPECT_EQ(play(3, 512), 0); }));
  EXPECT_NE(left, steady);
}

TEST_P(ScarceMemory, RefusesALongerBlockAndWritesNothing) {
  const waveform untouched(4096, 9.0F);
  int32_t answer = 1;
  for (int64_t number = 0; answer == 1; ++number) {
    start();
    left = right = untouched;
    const bool failed = with_failing_allocation(number, [&] { answer = play(1, 4096); });
    EXPECT_EQ(answer, failed ? 1 : 0) << number;
    EXPECT_EQ(left == untouched && right == untouched, failed) << number;
    EXPECT_EQ(play(1, 4096), 0) << number;
    EXPECT_GT(peak(left), 0.001F) << number;
    EXPECT_LT(peak(left), 9.0F) << number;
  }
}

INSTANTIATE_TEST_SUITE_P(Rate, ScarceMemory, testing::Values(44100.0F, 48000.0F));

}  // namespace
