// MIT License. What the tables under resources/ say about the sounds.
#pragma once

#include <map>
#include <string>
#include <vector>

// What may be expected of a sound.
enum class sound_kind {
  clear,   // every word can be understood
  spoken,  // speech can be followed
  effect,  // a colour or a rhythm
};

struct sound_note {
  sound_kind kind = sound_kind::spoken;
  bool detuned = false;   // on purpose
  std::string character;  // one line
  std::string hint;       // what to sing or play
};

// A row of factory_sounds.csv, the values in the order of engine/sound_values.h.
struct sound_row {
  std::string name;
  std::vector<double> values;
};

struct sound_tables {
  std::map<int, sound_row> rows;    // by number; only sounds that exist
  std::map<int, sound_note> notes;  // only those that have been written

  // A sound without a note is a spoken one in tune.
  sound_note note(int number) const;
};

// Reads sounds/factory_sounds.csv and, if there is one, sounds/sound_notes.csv from the folder `resources`. The notes
// have the columns number | name | kind | tuning | character | hint, where kind is clear, spoken or effect and tuning
// is true or detuned.
//   throws   failure when a file cannot be read or a row is wrong
sound_tables read_sound_tables(const std::string& resources);

std::string name_of_kind(sound_kind kind);

// The algorithm of a sound in plain words, for example "filter bank, zero phase".
std::string algorithm_of(const sound_row& row);

// The fundamentals in Hz that a sound has when `notes` (MIDI notes) are held, without its fine tuning: those of
// both oscillators, or of the first alone when it drives the second. A ring adds its sum and difference tones, each at
// the nearest semitone.
std::vector<double> fundamentals_of(const sound_row& row, const std::vector<int>& notes);
