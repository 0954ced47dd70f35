// MIT License. Where a block's values enter the signal path.
#pragma once

#include "engine/voco_params.h"

struct voco_state;

// Does ahead of time what the first commit would find missing, so that no block has to: makes the tables that all
// engines of the process share, in about a millisecond at its first call, and the delays of `state`.
//   heap      the delays; those that can't be had are tried again by the first commit
void voco_prepare(voco_state* state);

// Copies the values of a block into `state`, runs the synthesizer's commit, and at the first call takes the windows
// and tables. A change of algorithm clears the envelopes, so that the new one starts without old ones; frames and
// overlap-add outputs continue.
//   params    entries 0 to 2 are clamped to 0..1 and written back
//   audio     no heap and no lock in a state that was prepared; the first choice of the noise loop fills it in
void voco_commit(voco_params* params, voco_state* state);
