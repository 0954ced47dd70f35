// MIT License. The carrier's oscillators: from parameters to pitch, and one sample of one note.
#pragma once

#include "dsp/wsyn.h"

// Takes a block of parameters: rebuilds the tables whose number or kind has changed, and computes pitch and filter
// targets. The first commit builds all loops, which takes milliseconds; later ones use neither heap nor locks.
//   params  wsyn_param_count values; any value is accepted, NaN included
void wsyn_commit(const float* params, wsyn_state* state);

// Chooses `render` from mode, sync and ring. A field of exactly 0.5 (or NaN) that counts leaves the choice as it was;
// before any choice that is render_sum.
void wsyn_select_render(wsyn_state* state);

// The render functions; see wsyn_render_fn. Phases outside a table read 0 there.
float render_sum(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state);
float render_sum_sync(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state);
float render_ring_sync(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state);
float render_ring(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state);
float render_sampled(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state);

// Sets pitch_mod1 and pitch_mod2 for one frame, and advances the LFO of an oscillator that uses it. Phases that are not
// numbers or beyond 2^25 start again at 0.
//   level      modulator level of the frame
//   crossings  zero crossings of the modulator's frame
void wsyn_modulate_pitch(float level, int32_t crossings, wsyn_state* state);

// Moves cutoff_now one sample towards cutoff_target, a one-pole smoother of 3001 samples (68 ms at 44100 Hz), and
// derives filter_feedback, filter_scale and filter_amount. A call costs a few operations once cutoff_now has settled.
//   returns  false if it has settled: until the next commit all calls find and leave the same
bool wsyn_advance_filter(wsyn_state* state);
