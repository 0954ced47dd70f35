// MIT License. Makes one sample loop, from its instrument to its bytes.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/loop_tone.h"

struct made_loop {
  const char* instrument;
  tone sound;
  double tilt;                  // at which the largest step is that of the format
  std::vector<int16_t> source;  // 16-bit samples before coding
  std::vector<int8_t> bytes;
};

// Makes loop 0 to 5; the same bytes at every call. Takes up to a second or two.
made_loop make_sample_loop(int32_t loop);
