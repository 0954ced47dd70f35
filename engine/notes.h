// MIT License. The held notes of the internal carrier and its voices, one per MIDI note.
#pragma once

#include <cstdint>

#include "dsp/wsyn.h"

struct voco_state;

constexpr int32_t lowest_note = 27;
constexpr int32_t highest_note = 108;

// States of a voice.
enum voice_condition : int32_t {
  voice_idle = 0,
  voice_held = 1,
  voice_releasing = -1,
  voice_sustained = -2,  // let go under the pedal
};

// Holds `note`. A note that has a slot is retriggered there and goes on from the level and phases that it has; without
// a free slot the note is dropped. Notes outside the playable range are ignored.
void notes_on(int32_t note, voco_state* state);

// Releases `note`, or marks it as sustained while the pedal is down.
void notes_off(int32_t note, voco_state* state);

// Moves the pedal. Lifting it releases the sustained notes.
void notes_set_sustain(int32_t on, voco_state* state);

// Takes up to 128 bytes of note numbers as floats. All held notes are released first; entries outside the playable
// range leave their slot as it was.
void notes_set_list(const float* notes, uint32_t byte_count, voco_state* state);

// Releases all held notes and centres the pitch bend. The slots keep their numbers.
void notes_all_off(voco_state* state);

// The next sample of the carrier: all sounding voices in ascending order of their notes, filtered and scaled.
//   audio     no heap; idle voices cost nothing
float wsyn_next_sample(wsyn_state* state);

// `n` of them, the same samples in less time: nothing that a note needs changes within a run.
void wsyn_next_samples(int32_t n, wsyn_state* state, float* samples);
