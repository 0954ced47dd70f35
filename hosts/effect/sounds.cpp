// MIT License. The effect's sounds: the table, finding one in it, and printing it.
#include "hosts/effect/sounds.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

#include "hosts/effect/finding.h"
#include "hosts/effect/keys.h"
#include "hosts/effect/text.h"

extern const signed char sound_table_bytes[];
extern const unsigned int sound_table_bytes_size;

namespace {

using table_row = std::vector<std::string>;

// The rows of an embedded table. Lines that begin with # and the first other line, the headings, are skipped.
std::vector<table_row> rows_of(const signed char* bytes, std::size_t size) {
  std::vector<table_row> rows;
  bool below_headings = false;
  for (const auto& line : split({reinterpret_cast<const char*>(bytes), size}, '\n')) {
    if (line.empty() || line.front() == '#') continue;
    if (below_headings) rows.push_back(split(line, ','));
    below_headings = true;
  }
  return rows;
}

std::vector<sound> embedded_sounds() {
  std::vector<sound> sounds;
  for (const auto& row : rows_of(sound_table_bytes, sound_table_bytes_size)) {
    sounds.push_back({std::stoi(row.at(0)), std::stoi(row.at(2)), row.at(3), row.at(1), row.at(4)});
  }
  return sounds;
}

}  // namespace

const std::vector<sound>& known_sounds() {
  static const auto sounds = embedded_sounds();
  return sounds;
}

const sound& find_sound(const std::vector<sound>& sounds, std::string_view wanted) {
  std::vector<findable> entries;
  entries.reserve(sounds.size());
  for (const auto& entry : sounds) entries.push_back({entry.number, entry.name, entry.uuid});
  return sounds[find_entry(entries, wanted, {"sound", "--list-sounds"})];
}

const sound* sound_with_uuid(const std::vector<sound>& sounds, std::string_view uuid) {
  const auto found = std::find_if(sounds.begin(), sounds.end(), [key = lower_case(uuid)](const sound& entry) {
    return lower_case(entry.uuid) == key;
  });
  return found == sounds.end() ? nullptr : &*found;
}

int lowest_note(const sound& chosen, bool octave) {
  return chosen.root_key + (octave ? octave_switch_keys : 0);
}

std::string table_of(const std::vector<sound>& sounds) {
  std::size_t name_width = 0;
  std::size_t category_width = 0;
  for (const auto& entry : sounds) {
    name_width = std::max(name_width, entry.name.size());
    category_width = std::max(category_width, entry.category.size());
  }
  std::ostringstream table;
  for (const auto& entry : sounds) {
    table << std::right << std::setw(3) << entry.number << "  " << std::left << std::setw(static_cast<int>(name_width))
          << entry.name << "  " << std::setw(static_cast<int>(category_width)) << entry.category << "  " << std::setw(2)
          << name_of_note(entry.root_key) << " (" << entry.root_key << ")  " << entry.uuid << "\n";
  }
  return table.str();
}
