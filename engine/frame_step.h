// MIT License. The block-rate work of one frame.
#pragma once

struct voco_state;

// Runs once a hop, when the frames are full: measures the modulator, drives the synthesizer's pitch modulation, runs
// the algorithm of `mode` and adds its result to the overlap-add outputs. Leaves `frame_pos` at the middle of the
// frame.
//   audio     no heap
void voco_frame_step(voco_state* state);
