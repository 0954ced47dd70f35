// MIT License. Keys of the chord, written as key indices or as note names.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

constexpr int key_count = 36;           // keys on the keyboard, index 0 to 35
constexpr int largest_chord = 32;       // notes that the synthesizer holds at once
constexpr int octave_switch_keys = 12;  // semitones by which the octave switch raises the keyboard

// The MIDI note with this name: a letter A to G in either case, any number of # (sharp) or b (flat), an octave -1 to 9.
// C4 is 60. Empty for any other text and for notes outside 0 to 127.
std::optional<int> note_of_name(std::string_view name);

// The name of `note` with sharps, for example "C#4" for 61.
std::string name_of_note(int note);

// The key indices in a list such as "12,16,19" or "C4,E4,G4", ascending and without duplicates. Indices and names may
// be mixed.
//   lowest_note   MIDI note of key 0
//                 A list may also be the name of a chord (chords.h) that isn't a note's, such as Am7 or F/A
//   throws        failure for an empty list, an item that is neither index nor name, a key outside the keyboard, and
//                 more than `largest_chord` keys
std::vector<int> parse_keys(std::string_view list, int lowest_note);
