// MIT License. Finding one of several things by what a person types.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

struct findable {
  int number;
  std::string name;
  std::string id = {};  // a second name that is taken whole only; may be empty
};

// What the messages call the things.
struct finding_words {
  const char* kind;         // "sound"
  const char* list_option;  // "--list-sounds"
};

// The index in `entries` of what `wanted` means: a number, a name or id in any case, or a part of a name that no other
// entry has. A whole name wins over a part of others, and the very letters over other case.
//   throws   failure when there is none or more than one, with the candidates
std::size_t find_entry(const std::vector<findable>& entries, std::string_view wanted, const finding_words& words);

// Ascending numbers with runs drawn together: {0, 1, 2, 5} gives "0 to 2, 5".
std::string runs_of(const std::vector<int>& numbers);
