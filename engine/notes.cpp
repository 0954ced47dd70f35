// MIT License.
#include "engine/notes.h"

#include <algorithm>
#include <cstring>

#include "dsp/convert.h"
#include "engine/voices.h"

namespace {

bool is_playable(int32_t note) {
  return note >= lowest_note && note <= highest_note;
}

void refresh(const wsyn_state& synth, note_list* mirror) {
  for (size_t i = 0; i < mirror->size(); ++i) (*mirror)[i] = static_cast<float>(synth.note_slots[i]);
}

void start_note(int32_t note, wsyn_state* synth) {
  auto& slots = synth->note_slots;
  const bool has_slot = std::find(std::begin(slots), std::end(slots), note) != std::end(slots);
  if (!has_slot) {
    auto* const free_slot =
        std::find_if(std::begin(slots), std::end(slots), [](int32_t slot) { return slot < lowest_note; });
    if (free_slot == std::end(slots)) return;
    *free_slot = note;
  }
  voice_set_condition(note, voice_held, synth);
}

void stop_note(int32_t note, wsyn_state* synth) {
  for (int32_t& slot : synth->note_slots) {
    if (slot != note) continue;
    if (synth->sustain != 0) {
      voice_set_condition(note, voice_sustained, synth);
    } else {
      slot = 0;
      voice_set_condition(note, voice_releasing, synth);
    }
  }
}

void release_sustained(wsyn_state* synth) {
  for (int32_t& slot : synth->note_slots) {
    const int32_t note = slot;
    if (!is_playable(note) || synth->voices[note].state != voice_sustained) continue;
    slot = 0;
    voice_set_condition(note, voice_releasing, synth);
  }
}

// Makes the slots and voices follow the list.
void hold_listed_notes(const note_list& list, wsyn_state* synth) {
  for (int32_t note = lowest_note; note <= highest_note; ++note) {
    if (synth->voices[note].state == voice_held) voice_set_condition(note, voice_releasing, synth);
  }
  for (size_t i = 0; i < list.size(); ++i) {
    const int32_t note = truncate_to_int32(list[i]);
    if (!is_playable(note)) continue;
    synth->note_slots[i] = note;
    voice_set_condition(note, voice_held, synth);
  }
}

}  // namespace

void notes_on(int32_t note, wsyn_state* synth, note_list* mirror) {
  if (!is_playable(note)) return;
  start_note(note, synth);
  refresh(*synth, mirror);
}

void notes_off(int32_t note, wsyn_state* synth, note_list* mirror) {
  if (!is_playable(note)) return;
  stop_note(note, synth);
  refresh(*synth, mirror);
}

void notes_set_sustain(int32_t on, wsyn_state* synth, note_list* mirror) {
  if (synth->sustain != 0 && on == 0) release_sustained(synth);
  synth->sustain = on;
  refresh(*synth, mirror);
}

void notes_set_list(const float* notes, uint32_t byte_count, wsyn_state* synth, note_list* mirror) {
  std::memcpy(mirror->data(), notes, std::min<size_t>(byte_count, sizeof(*mirror)));
  hold_listed_notes(*mirror, synth);
}

void notes_all_off(wsyn_state* synth, note_list* mirror) {
  mirror->fill(0.0F);
  hold_listed_notes(*mirror, synth);
  synth->bend = 1.0F;
}
