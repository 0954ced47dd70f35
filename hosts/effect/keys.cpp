// MIT License. Keys of the chord, written as key indices or as note names.
#include "hosts/effect/keys.h"

#include <algorithm>
#include <charconv>
#include <set>

#include "hosts/effect/chords.h"
#include "hosts/effect/text.h"

namespace {

std::optional<int> whole_number(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
}

// Semitones above C of the letters A to G.
constexpr int semitones_of_letter[7] = {9, 11, 0, 2, 4, 5, 7};

std::string possible_keys(int lowest_note) {
  return "possible are 0 to " + std::to_string(key_count - 1) + ", or " + name_of_note(lowest_note) + " to " +
         name_of_note(lowest_note + key_count - 1);
}

// C7 is a note and a chord. For one who means the chord, how it is written with its octave.
std::string chord_of_the_same_name(const std::string& text, int lowest_note) {
  if (!chord_of_name(text)) return "";
  return "; the chord is " + text + "@" + std::to_string((lowest_note + 12) / 12 - 1);
}

int key_of(const std::string& text, int lowest_note) {
  const auto index = whole_number(text);
  const auto note = index ? std::nullopt : note_of_name(text);
  if (!index && !note) {
    throw failure("key '" + text + "' is no key index or note name: " + possible_keys(lowest_note) +
                  ", or one chord such as Am7");
  }
  const int key = index ? *index : *note - lowest_note;
  if (key < 0 || key >= key_count) {
    throw failure("key '" + text + "' lies outside this sound's keyboard: " + possible_keys(lowest_note) +
                  chord_of_the_same_name(text, lowest_note));
  }
  return key;
}

}  // namespace

std::optional<int> note_of_name(std::string_view name) {
  if (name.empty()) return std::nullopt;
  const char letter = static_cast<char>(name[0] & ~0x20);  // ASCII upper case
  if (letter < 'A' || letter > 'G') return std::nullopt;
  int semitones = semitones_of_letter[letter - 'A'];
  name.remove_prefix(1);
  for (; !name.empty() && (name[0] == '#' || name[0] == 'b'); name.remove_prefix(1)) {
    semitones += name[0] == '#' ? 1 : -1;
  }
  const auto octave = whole_number(name);
  if (!octave || *octave < -1 || *octave > 9) return std::nullopt;
  const int note = (*octave + 1) * 12 + semitones;
  if (note < 0 || note > 127) return std::nullopt;
  return note;
}

std::string name_of_note(int note) {
  static constexpr const char* names[12] = {"C", "C#", "D", "D#", "E", "F", "F#", "G", "G#", "A", "A#", "B"};
  return names[note % 12] + std::to_string(note / 12 - 1);
}

std::vector<int> parse_keys(std::string_view list, int lowest_note) {
  if (!note_of_name(list)) {
    if (const auto named = chord_of_name(list)) return keys_of_chord(*named, list, lowest_note);
  }
  std::set<int> keys;
  for (const auto& text : split(list, ',')) keys.insert(key_of(text, lowest_note));
  if (keys.size() > static_cast<std::size_t>(largest_chord)) {
    throw failure("a chord of " + std::to_string(keys.size()) + " keys is too large: at most " +
                  std::to_string(largest_chord) + " sound at once");
  }
  return {keys.begin(), keys.end()};
}
