// MIT License. Turns a change of held keys or of their base note into note-offs and note-ons.
#pragma once

#include <array>
#include <cstdint>
#include <span>

struct menu_row;

// Keys of the on-screen keyboard: three octaves. Key index i sounds note base + i.
constexpr int32_t key_count = 36;

// One flag per key index, non-zero meaning held. Flags from `key_count` on are copied but never played.
using key_flags = uint8_t[128];

// Note of key index 0 without a sound: C2 of the 128 MIDI notes, two octaves below middle C.
constexpr int32_t default_key_base = 36;

// Velocity of every note-on: the keys on the screen have none.
constexpr int32_t key_velocity = 127;

// The keys that the engine sounds now.
struct sounding_keys {
  key_flags held{};
  int32_t base = default_key_base;
};

// The changes from one set of sounding keys to another. Notes are in ascending order; all note-offs go first.
struct note_changes {
  std::array<int32_t, key_count> offs{};
  std::array<int32_t, key_count> ons{};
  int32_t off_count = 0;
  int32_t on_count = 0;

  std::span<const int32_t> ended() const { return {offs.data(), static_cast<size_t>(off_count)}; }
  std::span<const int32_t> begun() const { return {ons.data(), static_cast<size_t>(on_count)}; }
};

// Base note for `sound`, one octave up with `octave_on`. Without a sound the switch has no effect.
int32_t key_base_for(const menu_row* sound, bool octave_on);

// Moves `keys` to the flags `wanted` at `new_base` and returns which notes end and which begin. Keys are compared by
// the note they play: one that is held before and after a change of base is neither ended nor struck again.
//   audio   no heap, no lock
note_changes update_keys(const key_flags& wanted, int32_t new_base, sounding_keys* keys);
