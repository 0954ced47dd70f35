// MIT License. Finding a sound or a program by what the user types.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

struct findable {
  int number;
  std::string name;
  std::string id = {};  // a second name, which only matches as a whole; may be empty
};

// How messages refer to the entries.
struct finding_words {
  const char* kind;         // "sound"
  const char* list_option;  // "--list-sounds"
};

// The index in `entries` of the one that matches `wanted`: a number, a name or id in any case, or a part of exactly one
// name. A whole name is preferred to a part of one, and an exact match to one that differs in case.
//   throws   failure when none or several match, with the candidates
std::size_t find_entry(const std::vector<findable>& entries, std::string_view wanted, const finding_words& words);

// Ascending numbers as text, with runs shortened: {0, 1, 2, 5} gives "0 to 2, 5".
std::string runs_of(const std::vector<int>& numbers);
