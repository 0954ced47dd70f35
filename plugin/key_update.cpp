// MIT License. Turns a change of held keys or of their base note into note-offs and note-ons.
#include "plugin/key_update.h"

#include <algorithm>

#include "plugin/catalogue.h"

namespace {

constexpr int32_t notes_per_octave = 12;

bool holds_note(const key_flags& held, int32_t base, int32_t note) {
  const int32_t key = note - base;
  return key >= 0 && key < key_count && held[static_cast<size_t>(key)] != 0;
}

}  // namespace

int32_t key_base_for(const menu_row* sound, bool octave_on) {
  if (sound == nullptr) return default_key_base;
  return sound->root_key + (octave_on ? notes_per_octave : 0);
}

note_changes update_keys(const key_flags& wanted, int32_t new_base, sounding_keys* keys) {
  note_changes changes;
  for (int32_t key = 0; key < key_count; ++key) {
    const int32_t old_note = keys->base + key;
    if (holds_note(keys->held, keys->base, old_note) && !holds_note(wanted, new_base, old_note)) {
      changes.offs[static_cast<size_t>(changes.off_count++)] = old_note;
    }
    const int32_t new_note = new_base + key;
    if (holds_note(wanted, new_base, new_note) && !holds_note(keys->held, keys->base, new_note)) {
      changes.ons[static_cast<size_t>(changes.on_count++)] = new_note;
    }
  }
  std::ranges::copy(wanted, keys->held);
  keys->base = new_base;
  return changes;
}
