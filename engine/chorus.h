// MIT License. The chorus: two delays that move differently, one for each channel of the vocoded signal.
#pragma once

#include <cstdint>

struct voco_state;

// Replaces both channels by their delayed selves. There is no dry path: the effect comes from the difference of the
// channels and from the dry signals that are mixed in later. Delays of 129 to 321 samples.
//   shapes    left[n], right[n], n >= 0; two different arrays
//   state     `chorus_left`, `chorus_right` and their counter, which stand still between calls; a delay that isn't
//             ready passes its channel unchanged
//   audio     no heap
void chorus_process(float* left, float* right, int32_t n, voco_state* state);
