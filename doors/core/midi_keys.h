// MIT License. Plays the keyboard's keys by MIDI.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "plugin/key_update.h"

// The MIDI note of the keyboard's lowest key. The key sounds the root of the sound in use, so this is how far a part
// written for MIDI moves with the sound.
constexpr int32_t lowest_midi_note = 36;

// Follows the notes, pedals and mode messages of all sixteen channels, and changes the keys that they mean.
//
// A note holds its key until it ends or its channel's sustain pedal goes up. The first note after a silence of MIDI
// replaces what was latched by hand, so that the chord that is played is the chord that sounds. With `latch`, each note
// toggles its key instead, and nothing is released by itself. Notes 36 to 71 have a key each; 72, the end of a keyboard
// of three octaves from C to C, plays the C below. All others are ignored.
//
//   audio   no heap, no lock
class midi_keys {
 public:
  // Applies one message.
  //   message   complete, with its status byte; other kinds, and those cut short, do nothing
  //   keys      the flags of all keys, as they are and as they become
  //   returns   whether `keys` has changed
  bool apply(std::span<const uint8_t> message, bool latch, key_flags* keys);

  // Writes the keys that MIDI holds over `keys` if there are any: a chord goes on when something else has changed the
  // keys. Returns whether there were.
  bool reassert(key_flags* keys) const;

  // For a host that stops: its notes may end unheard. Keys stay as they are, until their notes end after all or the
  // next chord is played.
  void suspend();

 private:
  bool strike(int32_t key, uint16_t channel, bool latch, key_flags* keys);
  bool release(int32_t key, uint16_t channel, bool latch, key_flags* keys);
  bool control(int32_t controller, int32_t value, uint16_t channel, bool latch, key_flags* keys);
  bool lift_pedal(uint16_t channel, bool latch, key_flags* keys);
  bool end_notes(uint16_t channel, bool latch, key_flags* keys);
  bool is_silent() const;

  // One bit per MIDI channel, channel 1 in bit 0.
  std::array<uint16_t, key_count> down_{};
  std::array<uint16_t, key_count> sustained_{};
  std::array<uint16_t, key_count> suspended_{};
  uint16_t pedals_ = 0;
};
