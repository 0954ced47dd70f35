// MIT License. The held notes of the internal carrier and its sustain pedal.
#pragma once

#include <array>
#include <cstdint>

#include "dsp/wsyn.h"

constexpr int32_t lowest_note = 27;
constexpr int32_t highest_note = 108;

// The note slots as floats. Below `lowest_note` an entry is free.
using note_list = std::array<float, wsyn_note_slots>;

// All of these change the slots, the pedal and the voices' states in `synth`. Those that change slots one by one copy
// them to `mirror`; notes outside the playable range change neither.

// Holds `note`. A note that already has a slot is retriggered in it and continues from its level and phases. Without a
// free slot the note is dropped.
void notes_on(int32_t note, wsyn_state* synth, note_list* mirror);

// Releases `note`, or marks it as sustained while the pedal is down.
void notes_off(int32_t note, wsyn_state* synth, note_list* mirror);

// Moves the pedal. Lifting it releases the sustained notes.
void notes_set_sustain(int32_t on, wsyn_state* synth, note_list* mirror);

// Takes up to 128 bytes of note numbers as floats into `mirror`, releases all held notes and holds those of `mirror`.
// Entries outside the playable range leave their slot unchanged.
void notes_set_list(const float* notes, uint32_t byte_count, wsyn_state* synth, note_list* mirror);

// Clears `mirror`, releases all held notes and centres the pitch bend. The slots keep their numbers.
void notes_all_off(wsyn_state* synth, note_list* mirror);
