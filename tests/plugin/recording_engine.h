// MIT License. Replaces the engine in the tests of the shell and records its calls.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "engine/vocoder.h"

struct recorded_block {
  int32_t curve, chorus_on, reverb_on, sound_number;
  std::string sound_key;  // empty for null
  int32_t frames;
  const float* inputs[4];
};

struct engine_recording {
  bool running = true;             // false while a test counts allocations
  std::vector<std::string> calls;  // "create 44100", "destroy", "on 48 127", "off 48 0", "process"
  std::vector<recorded_block> blocks;

  // The calls so far, which are then forgotten.
  std::vector<std::string> take_calls() { return std::exchange(calls, {}); }
};
extern engine_recording recording;

// Samples that a block writes to the left and right output once the instance has a sound.
constexpr float recorded_left = 0.25F;
constexpr float recorded_right = 0.5F;
