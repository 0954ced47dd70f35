// MIT License. Where a block's values enter the signal path.
#pragma once

#include "engine/voco_params.h"

struct voco_state;

// Copies the values of a block into `state`, runs the synthesizer's commit, and at the first call builds the windows
// and tables. A change of algorithm clears the envelopes, so that the new one starts without old ones; frames and
// overlap-add outputs continue.
//   params    entries 0 to 2 are clamped to 0..1 and written back
//   audio     no heap; the first call builds the synthesizer's wave store, a change of waves reloads it
void voco_commit(voco_params* params, voco_state* state);
