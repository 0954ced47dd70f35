// MIT License. Wave store of the carrier: computed shapes, decoded sample loops, and what each oscillator plays.
#pragma once

#include <cstdint>
#include <span>

#include "dsp/wsyn.h"

// Builders of the loops: each fills its loop_table and its loop_length. Nothing is allocated. Loops 1, 2, 3 and 5 are
// plain decoded runs.
void wsyn_build_loop0(wsyn_state* state);  // reads the same forwards and backwards, so that its end meets its start
void wsyn_build_loop1(wsyn_state* state);
void wsyn_build_loop2(wsyn_state* state);
void wsyn_build_loop3(wsyn_state* state);
void wsyn_build_loop4(wsyn_state* state);  // its first 2048 samples are cross-faded with those past the wrap
void wsyn_build_loop5(wsyn_state* state);
void wsyn_build_loop6(wsyn_state* state);  // white noise from the calling thread's generator

// All of them, in ascending order.
void wsyn_build_loops(wsyn_state* state);

// Fills sine_table with one cycle.
void wsyn_build_sine_table(wsyn_state* state);

// Value of one computed shape.
//   shape    0 to 8; 9 is white noise, a new value per call; any other number gives 0
//   t        angle in radians, one cycle per 2 pi
//   returns  -1 to 1, but for shape 3 (1.03), shape 6 (1.0 to within rounding) and shape 7 (0.95), whose peaks follow
//            from their formulas
float wsyn_shape_value(int32_t shape, float t);

// Fills `table` with one cycle of `shape`; the last entry repeats the first, as the interpolation's guard point. Noise
// has no such guard.
void wsyn_fill_shape(int32_t shape, std::span<float, wsyn_shape_entries> table);

// Copies loop `number` into `wave`; the last entry, which no phase reaches, and what the loop doesn't fill are cleared.
//   returns  the wrap length of the loop. A number without a loop gives silence and 10000
int32_t wsyn_load_voice_wave(int32_t number, const wsyn_state& state, std::span<float, wsyn_voice_wave_entries> wave);
