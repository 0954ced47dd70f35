// MIT License. The slow movement of the delays in the chorus and the reverb: sums of sines, one for each channel.
#pragma once

#include <cstdint>

// One movement. Both channels have the fundamental, its octave above and below, and its third harmonic, which is a sine
// on the left and a cosine on the right.
struct motion_shape {
  double step;   // radians per sample of the fundamental
  double reach;  // largest position; the smallest is 0
};

constexpr motion_shape chorus_motion = {3.561896432641489e-05, 0.25};  // a turn in 176400 samples, 4 s
constexpr motion_shape reverb_motion = {2.849517146113191e-05, 0.45};  // a turn in 220500 samples, 5 s

constexpr int32_t motion_span = 64;  // samples that share one call of the sine

// Where the movement is at the last multiple of `motion_span`. Follows from the counter alone; kept so that short calls
// needn't form it again. Each movement has its own.
struct motion_anchor {
  double counter = -1.0;
  double phase = 0.0;  // radians, with all whole turns
  double turn = 0.0;   // radians within the turn, 0..2 pi
  double sine = 0.0;   // of half the turn
  double cosine = 0.0;
};

// Writes positions for the samples from `*counter` on and advances it: `count` of them, or as many as there are up to
// the next multiple of `motion_span`. Where the calls are cut doesn't show in the positions.
//   shapes    left[count], right[count]; positions of 0 to shape.reach
//   formula   with x = fmod(counter * step, 2 pi), in double precision, and s = (cos x + cos 2x + cos x/2) / 4:
//             left = (0.5 - (sin(3x) / 4 - s) / 2) * reach, right = (0.5 - (cos(3x) / 4 + s) / 2) * reach.
//             Met within 1e-12, and the jump of cos x/2 at the end of a turn comes at the formula's sample
//   counter   a whole number from 0 on
//   returns   the number of positions, at least 1 for a `count` of at least 1
int32_t motion_positions(const motion_shape& shape, int32_t count, double* left, double* right, double* counter,
                         motion_anchor* anchor);
