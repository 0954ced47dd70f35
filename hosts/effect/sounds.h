// MIT License. The list of sounds: finding one in it, and showing it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct sound {
  int number;
  int root_key;  // note of key 0
  std::string name;
  std::string category;
  std::string uuid;
  bool has_values;  // the engine can play it; without values it writes no output
};

// The effect's sounds, ascending by number. The VST 2.4 interface has no call for them, so they come from two tables
// built into this program: resources/sounds/catalogue.csv and, for `has_values`, factory_sounds.csv beside it.
const std::vector<sound>& known_sounds();

// Finds the sound that `wanted` means: its number, its name or uuid in any case, or a part of its name that no other
// sound has.
//   throws   failure when there is none or more than one, with the candidates
const sound& find_sound(const std::vector<sound>& sounds, std::string_view wanted);

// The sound that a program names by its uuid, in any case; null when there is none.
const sound* sound_with_uuid(const std::vector<sound>& sounds, std::string_view uuid);

// Note of key 0 when the octave switch is off or on.
int lowest_note(const sound& in_use, bool octave);

// The list as a table, a line per sound: number, name, category, lowest key, uuid.
std::string table_of(const std::vector<sound>& sounds);
