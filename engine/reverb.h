// MIT License. The reverb: a ring of samples per channel, read at 32 taps that rotate the channels into each other.
#pragma once

#include <array>
#include <cstdint>

#include "engine/distance_delay.h"
#include "engine/motion.h"

constexpr int32_t reverb_tap_count = 32;
constexpr int32_t reverb_ring_size = 24000;  // the largest room takes 22422

using tap_positions = std::array<int32_t, reverb_tap_count>;

struct reverb_state {
  using ring = std::array<float, reverb_ring_size>;

  int32_t configured = 0;   // 1 after the first configure
  float level = 0.0F;       // 0..1
  float size = 0.0F;        // 0..1
  float decay_size = 0.0F;  // the size that sets the feedback; the same
  int32_t write_index = 0;  // of the input
  int32_t limit = 0;        // largest index in use; the rings wrap after it
  ring left{};
  ring right{};
  distance_delay motion_left;  // these keep the tail from ringing
  distance_delay motion_right;
  double motion_counter = 0.0;  // in samples
  motion_anchor anchor;
  tap_positions tap{};     // positions, which advance with `write_index`
  uint8_t overflowed = 0;  // the tail has become infinite or not a number since it was last clear
};

// Makes the motion delays that aren't ready.
//   heap      their storage; a delay stays not ready when it can't be had
void reverb_prepare(reverb_state* state);

// Takes the values of a block. A size that differs by 1/128 or more from the one in use rebuilds the taps, clears
// the tail and restarts the motion; a smaller difference is ignored, so that a moving control doesn't do so in every
// block.
//   level     limited to 0..1; full from one half up
//   size      limited to 0..1: rings of 422 to 22422 samples. Beyond 0.91 the decay time stays the same
//   NaN       counts as 0 in both
//   audio     no heap, unless motion delays are missing that `reverb_prepare` would have made
void reverb_configure(float level, float size, reverb_state* state);

// Adds the tail to `*out_left` and `*out_right`, and the input to the tail. Nothing happens before the first configure.
//   NaN       in the inputs counts as 0; not-finite sums become 0
//   audio     no heap
void reverb_process(float in_left, float in_right, float* out_left, float* out_right, reverb_state* state);

// Clears a tail that has overflowed. The taps rotate the channels into each other, so one bad number would spread over
// both rings within a second and never leave. The time of the call is part of the sound: once per frame.
void reverb_recover(reverb_state* state);

// The same as reverb_process for `n` samples. The results don't depend on where a signal is cut into blocks.
//   shapes    inputs and outputs [n], n >= 0; outputs are other arrays than the inputs
void reverb_process_block(const float* in_left, const float* in_right, float* out_left, float* out_right, int32_t n,
                          reverb_state* state);
