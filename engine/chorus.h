// MIT License. The chorus: two delays that move differently, one for each channel of the vocoded signal.
#pragma once

#include <cstdint>

#include "engine/distance_delay.h"
#include "engine/motion.h"

struct chorus_state {
  distance_delay left;
  distance_delay right;
  double sample_counter = 0.0;  // samples processed so far, from which both delays' positions follow
  motion_anchor anchor;
};

// Makes the delays that aren't ready.
//   heap      their storage; a delay stays not ready when it can't be had
void chorus_prepare(chorus_state* state);

// Replaces both channels by their delayed selves. There is no dry path: the effect comes from the difference of the
// channels and from the dry signals that are mixed in later. Delays of 129 to 321 samples.
//   shapes    left[n], right[n], n >= 0; two different arrays
//   state     a delay that isn't ready passes its channel unchanged
//   audio     no heap
void chorus_process(float* left, float* right, int32_t n, chorus_state* state);
