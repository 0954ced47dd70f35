// MIT License. Wave store of the carrier: computed shapes, decoded sample loops, and what each oscillator plays.
#pragma once

#include <cstdint>
#include <span>

#include "dsp/wsyn.h"

constexpr int32_t wsyn_fixed_shapes = 9;  // computed shapes that are always the same: all but the noise

// The tables that are the same for every synthesizer. Some 1.1 MB of the 2.9 MB are ever touched: the loops' silence
// takes no memory until it is read.
struct wave_store {
  wsyn_voice_wave loops[noise_loop];  // loop 0 is mirrored, the head of loop 4 cross-faded with what follows its wrap
  wsyn_voice_wave silence;            // for numbers without a loop
  float shapes[wsyn_fixed_shapes][wsyn_shape_entries];
  float sine_table[wsyn_sine_entries];
};

// The store of this process, read-only. The first call makes it, in about a millisecond, while other threads wait; from
// then on calls take no lock. So call it once away from the audio thread.
const wave_store& shared_wave_store();

// Draws the noise loop of `state` from the calling thread's generator: white noise that a later wsyn_voice_wave_of
// fills in.
void wsyn_draw_noise_loop(wsyn_state* state);

// The loop `number` as `state` plays it, silence for a number without one.
//   audio    no heap; the first request for the noise loop fills it in, 60001 samples
const wsyn_voice_wave* wsyn_voice_wave_of(int32_t number, wsyn_state* state);

// Entries after which an oscillator wraps in loop `number`; 10000 without one.
int32_t wsyn_wrap_of(int32_t number);

// Value of one computed shape.
//   shape    0 to 8; 9 is white noise, a new value per call; any other number gives 0
//   t        angle in radians, one cycle per 2 pi
//   returns  -1 to 1, but for shape 3 (1.03), shape 6 (1.0 to within rounding) and shape 7 (0.95), whose peaks follow
//            from their formulas
float wsyn_shape_value(int32_t shape, float t);

// Fills `table` with one cycle of `shape`; the last entry repeats the first, as the interpolation's guard point. Noise
// has no such guard.
//   audio    no heap, and nothing is computed but noise: the other shapes come from the shared store
void wsyn_fill_shape(int32_t shape, std::span<float, wsyn_shape_entries> table);
