// MIT License. Plays the voice through the effect.
#pragma once

#include <atomic>
#include <cstdint>
#include <optional>
#include <thread>
#include <vector>

#include "hosts/effect/effect_host.h"
#include "hosts/show/host_answers.h"
#include "hosts/show/looped_voice.h"
#include "hosts/show/sound_device.h"

// Runs the effect in real time from construction to destruction: on the sound device, or by the clock.
class player final : private block_source {
 public:
  //   block     samples per call of the effect
  //   silent    run by the clock, as without a sound device; that has a warning on standard error
  player(effect_host* host, host_answers* answers, looped_voice* voice, int block, bool silent);
  ~player();
  player(const player&) = delete;
  player& operator=(const player&) = delete;

  // Goes on by the clock if the sound device has gone. For the window's thread to call now and then.
  void keep_playing();

 private:
  void make_block(float** outputs) override;
  void start_clock();
  void run_by_clock();

  effect_host& host_;
  host_answers& answers_;
  looped_voice& voice_;
  const int block_;
  std::vector<float> input_[2];
  int64_t position_ = 0;  // samples; of the audio thread
  std::optional<sound_device> device_;
  std::atomic<bool> ending_{false};
  std::thread clock_thread_;
};
