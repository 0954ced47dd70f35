// MIT License. The list of sounds as a person sees it, and finding one in it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct sound {
  int menu_row;  // place in the effect's menu
  int number;
  int root_key;  // note of key 0
  std::string name;
  std::string category;
  std::string uuid;
};

// Finds the sound that `wanted` means: its number, its name or uuid in any case, or a part of its name that no other
// sound has. A whole name wins over a part of others.
//   throws   failure when there is none or more than one, with the candidates
const sound& find_sound(const std::vector<sound>& sounds, std::string_view wanted);

// The list as a table, a line per sound: number, name, category, lowest key, uuid.
std::string table_of(const std::vector<sound>& sounds);

// Ascending numbers with runs drawn together: {0, 1, 2, 5} gives "0 to 2, 5".
std::string runs_of(const std::vector<int>& numbers);
