// MIT License. Removal of DC in 15-bit fixed point.
#pragma once

#include <cstdint>

// Removes DC from a frame, in place and from rest. Its samples end on the steps of a 16-bit converter, which gives the
// modes that begin with it much of their grain.
//   formula   y[t] = x[t] - x[t - 1] + (1 - 1 / 1024) y[t - 1]: a corner of 6.9 Hz at 44.1 kHz, fs / (2 pi 1024)
//   range     samples within full scale; the sums of hotter ones wrap
void dc_block(float* samples, int32_t n);

// The same for two frames in the time of one, as each waits most of the time for its own last sample.
//   shapes    modulator[n], carrier[n], which may be the same array
void dc_block_pair(float* modulator, float* carrier, int32_t n);
