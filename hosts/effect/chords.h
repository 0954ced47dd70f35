// MIT License. Chords by their names.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A chord, wherever on the keyboard it is played.
struct chord {
  int root = 0;                // pitch class, 0 for C
  std::vector<int> intervals;  // semitones above the root, ascending, 0 first unless the name leaves it out
  std::optional<int> bass;     // pitch class of a bass that isn't the root
  std::optional<int> octave;   // of the root, as in note names
};

// The chord with such a name as Am7, F#maj9, Bb, Csus4, G7b9, Edim, D5, F/A, or Am7@3 for one whose root is in
// octave 3.
//   name      a letter A to G, # or b, a quality, alterations and additions, /bass, @octave. Case counts but for the
//             root's letter: m is minor, M and maj are major
//   returns   empty for other texts
std::optional<chord> chord_of_name(std::string_view name);

// The keys that play the chord on a keyboard whose key 0 is `lowest_note`. The root is in the requested octave, by
// default the middle one, and a slash bass below it. Notes off either end of the keyboard move by octaves.
//   returns   key indices, ascending
//   throws    failure when the octave that is asked for isn't on the keyboard
std::vector<int> keys_of_chord(const chord& played, std::string_view name, int lowest_note);
