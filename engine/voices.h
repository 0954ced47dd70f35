// MIT License. The voices of the internal carrier, one per MIDI note: envelope, filter and sum.
#pragma once

#include <cstdint>

#include "dsp/wsyn.h"

// States of a voice.
enum voice_condition : int32_t {
  voice_idle = 0,
  voice_held = 1,
  voice_releasing = -1,
  voice_sustained = -2,  // released by its key while the pedal is down
};

// Sets the state of a note's voice, and its bit in `sounding`, by which rendering finds the voices.
//   note      0 to 127
void voice_set_condition(int32_t note, voice_condition condition, wsyn_state* synth);

// The next sample of the carrier: all sounding voices in ascending order of their notes, filtered and scaled. A voice
// that has faded out becomes idle, its phases and filter 0.
//   audio     no heap; idle voices cost nothing
float wsyn_next_sample(wsyn_state* state);

// The next `n` samples, bit for bit those of `n` calls of wsyn_next_sample, in less time.
void wsyn_next_samples(int32_t n, wsyn_state* state, float* samples);

// Its two versions, for every processor and, faster, for those that have AVX2; both give the same samples.
void wsyn_next_samples_baseline(int32_t n, wsyn_state* state, float* samples);
void wsyn_next_samples_avx2(int32_t n, wsyn_state* state, float* samples);
