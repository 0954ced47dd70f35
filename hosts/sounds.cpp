// MIT License. The list of sounds: finding one in it, and showing it.
#include "hosts/sounds.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

#include "hosts/finding.h"
#include "hosts/keys.h"
#include "hosts/text.h"

extern const signed char sound_table_bytes[];
extern const unsigned int sound_table_bytes_size;

// Rows of number, category, root key, name and uuid. Lines that begin with # and the first other line, the headings,
// are skipped. The effect's own catalogue is generated from the same table.
static std::vector<sound> sounds_of_table(std::string_view table) {
  std::vector<sound> sounds;
  bool below_headings = false;
  for (const auto& row : split(table, '\n')) {
    if (row.empty() || row.front() == '#') continue;
    const auto cells = split(row, ',');
    if (below_headings)
      sounds.push_back({std::stoi(cells.at(0)), std::stoi(cells.at(2)), cells.at(3), cells.at(1), cells.at(4)});
    below_headings = true;
  }
  return sounds;
}

const std::vector<sound>& known_sounds() {
  static const auto sounds =
      sounds_of_table({reinterpret_cast<const char*>(sound_table_bytes), sound_table_bytes_size});
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

int lowest_note(const sound& in_use, bool octave) {
  return in_use.root_key + (octave ? octave_switch_keys : 0);
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
