// MIT License. The effect's sounds: the table, finding one in it, and printing it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct sound {
  int number;
  int root_key;  // MIDI note of key 0
  std::string name;
  std::string category;
  std::string uuid;
};

// The effect's sounds, ascending by number. The VST 2.4 interface has no call for them, so they come from a table built
// into this program: resources/sounds/catalogue.csv.
const std::vector<sound>& known_sounds();

// The sound that matches `wanted`: a number, a name or uuid in any case, or a part of exactly one name.
//   throws   failure when none or several match, with the candidates
const sound& find_sound(const std::vector<sound>& sounds, std::string_view wanted);

// The sound with this uuid, in any case; null when there is no such sound.
const sound* sound_with_uuid(const std::vector<sound>& sounds, std::string_view uuid);

// MIDI note of key 0, with the octave switch off or on.
int lowest_note(const sound& chosen, bool octave);

// The sounds as a table, a line per sound: number, name, category, lowest key, uuid.
std::string table_of(const std::vector<sound>& sounds);
