// MIT License. Chords by their names.
#include "hosts/effect/chords.h"

#include <algorithm>
#include <charconv>
#include <set>

#include "hosts/effect/keys.h"
#include "hosts/effect/text.h"

namespace {

struct quality {
  std::string_view name;
  std::vector<int> intervals;
};

// Of names that begin alike, the longer one comes first.
const std::vector<quality>& qualities() {
  static const std::vector<quality> all = {
      // clang-format off
      {"maj13", {0, 4, 7, 11, 14, 21}},     {"M13", {0, 4, 7, 11, 14, 21}},
      {"maj9", {0, 4, 7, 11, 14}},          {"M9", {0, 4, 7, 11, 14}},
      {"maj7", {0, 4, 7, 11}},              {"M7", {0, 4, 7, 11}},
      {"maj", {0, 4, 7}},                   {"M", {0, 4, 7}},
      {"mmaj7", {0, 3, 7, 11}},             {"mM7", {0, 3, 7, 11}},
      {"min13", {0, 3, 7, 10, 14, 21}},     {"m13", {0, 3, 7, 10, 14, 21}},
      {"min11", {0, 3, 7, 10, 14, 17}},     {"m11", {0, 3, 7, 10, 14, 17}},
      {"min9", {0, 3, 7, 10, 14}},          {"m9", {0, 3, 7, 10, 14}},
      {"m7b5", {0, 3, 6, 10}},
      {"min7", {0, 3, 7, 10}},              {"m7", {0, 3, 7, 10}},
      {"m69", {0, 3, 7, 9, 14}},            {"m6/9", {0, 3, 7, 9, 14}},
      {"min6", {0, 3, 7, 9}},               {"m6", {0, 3, 7, 9}},
      {"min", {0, 3, 7}},                   {"m", {0, 3, 7}},
      {"dim7", {0, 3, 6, 9}},               {"dim", {0, 3, 6}},
      {"aug7", {0, 4, 8, 10}},              {"aug", {0, 4, 8}},         {"+", {0, 4, 8}},
      {"7sus4", {0, 5, 7, 10}},             {"9sus4", {0, 5, 7, 10, 14}},
      {"sus2", {0, 2, 7}},                  {"sus4", {0, 5, 7}},        {"sus", {0, 5, 7}},
      {"69", {0, 4, 7, 9, 14}},             {"6/9", {0, 4, 7, 9, 14}},  {"6", {0, 4, 7, 9}},
      {"13", {0, 4, 7, 10, 14, 21}},        {"11", {0, 4, 7, 10, 14, 17}},
      {"9", {0, 4, 7, 10, 14}},             {"7", {0, 4, 7, 10}},
      {"5", {0, 7}},
      {"", {0, 4, 7}},
      // clang-format on
  };
  return all;
}

struct alteration {
  std::string_view name;
  std::optional<int> replaced;  // interval that gives way
  int interval;
};

constexpr alteration alterations[] = {
    {"add9", {}, 14}, {"add2", {}, 2}, {"add11", {}, 17}, {"add4", {}, 5}, {"b5", 7, 6},   {"#5", 7, 8},
    {"b9", 14, 13},   {"#9", 14, 15},  {"#11", 17, 18},   {"b13", 21, 20}, {"no5", 7, -1}, {"no3", 4, -1},
};

bool take(std::string_view word, std::string_view* text) {
  if (!text->starts_with(word)) return false;
  text->remove_prefix(word.size());
  return true;
}

std::optional<int> take_pitch_class(std::string_view* text) {
  static constexpr int semitones_of_letter[] = {9, 11, 0, 2, 4, 5, 7};
  if (text->empty()) return std::nullopt;
  const char letter = static_cast<char>(text->front() & ~0x20);
  if (letter < 'A' || letter > 'G') return std::nullopt;
  text->remove_prefix(1);
  int semitones = semitones_of_letter[letter - 'A'];
  if (take("#", text)) {
    ++semitones;
  } else if (take("b", text)) {
    --semitones;
  }
  return (semitones + 12) % 12;
}

std::optional<int> whole_number(std::string_view text) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size()) return std::nullopt;
  return number;
}

void alter(const alteration& change, std::set<int>* intervals) {
  if (change.replaced) {
    intervals->erase(*change.replaced);
    if (*change.replaced == 4) intervals->erase(3);
  }
  if (change.interval >= 0) intervals->insert(change.interval);
}

// Alterations may be in brackets or divided by commas, as in C7(b9,#11).
std::optional<std::vector<int>> intervals_of(std::string_view text) {
  const auto found =
      std::ranges::find_if(qualities(), [&](const quality& each) { return text.starts_with(each.name); });
  text.remove_prefix(found->name.size());
  std::set<int> intervals(found->intervals.begin(), found->intervals.end());
  bool in_brackets = false;
  while (!text.empty()) {
    if (take(in_brackets ? ")" : "(", &text)) {
      in_brackets = !in_brackets;
      continue;
    }
    if (take(",", &text)) continue;
    const auto change =
        std::ranges::find_if(alterations, [&](const alteration& each) { return take(each.name, &text); });
    if (change == std::end(alterations)) return std::nullopt;
    alter(*change, &intervals);
  }
  if (in_brackets) return std::nullopt;
  return std::vector<int>(intervals.begin(), intervals.end());
}

}  // namespace

std::optional<chord> chord_of_name(std::string_view name) {
  chord result;
  const size_t at = name.rfind('@');
  if (at != std::string_view::npos) {
    result.octave = whole_number(name.substr(at + 1));
    if (!result.octave || *result.octave < -1 || *result.octave > 9) return std::nullopt;
    name = name.substr(0, at);
  }
  const size_t slash = name.rfind('/');
  if (slash != std::string_view::npos && !name.ends_with("6/9")) {
    std::string_view bass = name.substr(slash + 1);
    result.bass = take_pitch_class(&bass);
    if (!result.bass || !bass.empty()) return std::nullopt;
    name = name.substr(0, slash);
  }
  const auto root = take_pitch_class(&name);
  if (!root) return std::nullopt;
  result.root = *root;
  const auto intervals = intervals_of(name);
  if (!intervals) return std::nullopt;
  result.intervals = *intervals;
  return result;
}

std::vector<int> keys_of_chord(const chord& played, std::string_view name, int lowest_note) {
  constexpr int octave = 12;
  constexpr int middle_octave = 12;  // its first key
  const int first_note = lowest_note + middle_octave;
  int root = first_note + (played.root - first_note % octave + octave) % octave - lowest_note;
  if (played.octave) {
    root = (*played.octave + 1) * octave + played.root - lowest_note;
    if (root < 0 || root >= key_count) {
      throw failure("chord '" + std::string(name) + "' isn't on this sound's keyboard, " + name_of_note(lowest_note) +
                    " to " + name_of_note(lowest_note + key_count - 1));
    }
  }
  std::set<int> keys;
  const auto insert = [&keys](int key) {
    while (key >= key_count) key -= octave;
    while (key < 0) key += octave;
    keys.insert(key);
  };
  for (const int interval : played.intervals) insert(root + interval);
  if (played.bass) insert(root - (played.root - *played.bass + octave) % octave);
  return {keys.begin(), keys.end()};
}
