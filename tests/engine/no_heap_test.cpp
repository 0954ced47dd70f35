// MIT License. Counts what reaches the heap while blocks run.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "tests/engine/engine_words.h"

namespace {

std::atomic<int64_t> allocations{0};

void* counted(std::size_t size) {
  allocations.fetch_add(1, std::memory_order_relaxed);
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

void* operator new(std::size_t size) {
  return counted(size);
}
void* operator new[](std::size_t size) {
  return counted(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  allocations.fetch_add(1, std::memory_order_relaxed);
  return std::malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
  return operator new(size, tag);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}

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
    process_values(plain_sound(2.0F), 1024, inputs, outputs, instance.get());  // the longest block sizes the buffers
    for (const int mode : all_modes) {
      sound_values sound = plain_sound(static_cast<float>(mode));
      sound[value_reverb_level] = 0.5F;
      sound[value_reverb_size] = static_cast<float>(mode) / 15.0F;
      const int64_t before = allocations.load();
      for (const int32_t frames : {1024, 64, 512, 1000, 1})
        process_values(sound, frames, inputs, outputs, instance.get(), {.chorus = 1, .reverb = 1});
      vocoder_note_off(52, 0, instance.get());
      vocoder_note_on(52, 1, instance.get());
      EXPECT_EQ(allocations.load(), before) << "mode " << mode << " at " << rate;
    }
  }
}

}  // namespace
