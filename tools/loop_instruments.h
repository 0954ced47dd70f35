// MIT License. The instruments of the six sample loops.
#pragma once

#include <cstdint>

#include "tools/loop_tone.h"

struct instrument {
  const char* name;
  uint64_t seed;  // of the first phases; the one of ten that led to the lowest crest factor and level ripple
  tone sound;
};

// The instrument of loop 0 to 5, with levels but without phases: the same partials at every call.
instrument make_instrument(int32_t loop);
