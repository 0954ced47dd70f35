// MIT License. Tests of the requests to the audio thread.
#include "plugin/audio_requests.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace {

TEST(AudioRequests, AskForAKeyUpdateOncePerChangeThatMovesKeys) {
  audio_requests requests;
  EXPECT_EQ(requests.sound(), no_row);
  EXPECT_FALSE(requests.take_key_update());
  const auto is_taken_once = [&] { return requests.take_key_update() && !requests.take_key_update(); };
  requests.hold_keys({});
  EXPECT_TRUE(is_taken_once());
  requests.choose_sound(5);
  EXPECT_TRUE(is_taken_once());
  EXPECT_EQ(requests.sound(), 5);
  requests.turn(parameter_octave_on, true);
  EXPECT_TRUE(is_taken_once());
  EXPECT_TRUE(requests.is_on(parameter_octave_on));

  requests.turn(parameter_chorus_on, true);
  requests.set_switch(parameter_octave_on, false);
  requests.set_sound(6);
  EXPECT_FALSE(requests.take_key_update());
  EXPECT_TRUE(requests.is_on(parameter_chorus_on));
  EXPECT_FALSE(requests.is_on(parameter_reverb_on));
  EXPECT_FALSE(requests.is_on(parameter_octave_on));
  EXPECT_EQ(requests.sound(), 6);
}

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
