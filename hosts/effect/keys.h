// MIT License. Keys of the chord: key indices and note names as a person writes them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

constexpr int k_key_count = 36;           // keys of the keyboard, index 0 to 35
constexpr int k_largest_chord = 32;       // notes that the synthesizer holds at once
constexpr int k_octave_switch_keys = 12;  // semitones by which the octave switch raises the keyboard

// MIDI note of a name: a letter A to G in either case, # (sharp) or b (flat) any number of times, an octave -1 to 9.
// C4 is 60. Empty for anything else, and for notes outside 0 to 127.
std::optional<int> note_of_name(std::string_view name);

// The name of `note` with sharps, for example "C#4" for 61.
std::string name_of_note(int note);

// The key indices of a list such as "12,16,19" or "C4,E4,G4", ascending, each once. The two kinds may be mixed.
//   lowest_note   note of key 0, by which note names are placed
//   throws        failure for an empty list, for what is neither index nor name, for a key outside the keyboard, and
//                 for more than `k_largest_chord` keys
std::vector<int> parse_keys(std::string_view list, int lowest_note);
