// MIT License. Tests of the requests to the audio thread.
#include "plugin/audio_requests.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace {

// In turn: `taken` orders what the audio thread did before the next request, never the request before its data.
TEST(AudioRequests, ShowTheThreadThatTakesThemWhatWasWrittenBefore) {
  audio_requests requests;
  std::atomic<int32_t> taken{0};
  std::thread audio([&] {
    for (int32_t round = 1; round <= 100; ++round) {
      while (!requests.take_key_update()) std::this_thread::yield();
      key_flags keys;
      requests.copy_keys(keys);
      EXPECT_THAT(keys, testing::Each(round));
      EXPECT_EQ(requests.sound(), round);
      taken.store(round, std::memory_order_release);
    }
  });
  for (int32_t round = 1; round <= 100; ++round) {
    key_flags keys;
    std::ranges::fill(keys, static_cast<uint8_t>(round));
    requests.set_sound(round);
    requests.hold_keys(keys);
    while (taken.load(std::memory_order_acquire) < round) std::this_thread::yield();
  }
  audio.join();
}

}  // namespace
