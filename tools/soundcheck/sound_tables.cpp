// MIT License. What the tables under resources/ say about the sounds.
#include "tools/soundcheck/sound_tables.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "engine/modes.h"
#include "engine/sound_values.h"
#include "hosts/effect/text.h"

namespace {

struct table_line {
  std::string where;  // for messages
  std::vector<std::string> cells;
};

// The rows of a table. Left out are blank lines, those that begin with #, and the headings, whose first is "number".
std::vector<table_line> lines_of(const std::string& path, char separator) {
  std::ifstream file(path);
  if (!file) throw failure("table '" + path + "' cannot be read");
  std::vector<table_line> lines;
  std::string text;
  for (int number = 1; std::getline(file, text); ++number) {
    auto cells = split(text, separator);
    if (text.starts_with('#') || (cells.size() == 1 && cells.front().empty())) continue;
    if (cells.front() != "number") lines.push_back({path + ":" + std::to_string(number), std::move(cells)});
  }
  return lines;
}

template <typename number>
number number_in(const std::string& cell, const table_line& line) {
  number value{};
  const auto [end, error] = std::from_chars(cell.data(), cell.data() + cell.size(), value);
  if (error == std::errc{} && end == cell.data() + cell.size()) return value;
  throw failure(line.where + ": '" + cell + "' is no number");
}

void check_columns(const table_line& line, std::size_t wanted) {
  if (line.cells.size() == wanted) return;
  throw failure(line.where + ": " + std::to_string(line.cells.size()) + " columns instead of " +
                std::to_string(wanted));
}

std::map<int, sound_row> read_rows(const std::string& path) {
  std::map<int, sound_row> rows;
  for (const auto& line : lines_of(path, ',')) {
    check_columns(line, 2 + sound_value_count);
    sound_row row{line.cells[1], {}};
    for (std::size_t i = 2; i < line.cells.size(); ++i) row.values.push_back(number_in<double>(line.cells[i], line));
    rows.emplace(number_in<int>(line.cells[0], line), std::move(row));
  }
  return rows;
}

sound_kind kind_of(const table_line& line) {
  for (const sound_kind kind : {sound_kind::clear, sound_kind::spoken, sound_kind::effect}) {
    if (line.cells[2] == name_of_kind(kind)) return kind;
  }
  throw failure(line.where + ": a sound is clear, spoken or effect, not '" + line.cells[2] + "'");
}

bool detuned_in(const table_line& line) {
  if (line.cells[3] == "detuned") return true;
  if (line.cells[3] == "true") return false;
  throw failure(line.where + ": the tuning is true or detuned, not '" + line.cells[3] + "'");
}

std::map<int, sound_note> read_notes(const std::string& path) {
  std::map<int, sound_note> notes;
  for (const auto& line : lines_of(path, '|')) {
    check_columns(line, 6);
    notes[number_in<int>(line.cells[0], line)] = {kind_of(line), detuned_in(line), line.cells[4], line.cells[5]};
  }
  return notes;
}

double hz_of_note(double note) {
  return 440.0 * std::exp2((note - 69.0) / 12.0);
}

double nearest_semitone_hz(double hz) {
  return hz_of_note(std::round(69.0 + 12.0 * std::log2(hz / 440.0)));
}

}  // namespace

sound_note sound_tables::note(int number) const {
  const auto found = notes.find(number);
  return found == notes.end() ? sound_note{} : found->second;
}

sound_tables read_sound_tables(const std::string& resources) {
  const std::string folder = resources + "/sounds/";
  sound_tables tables;
  tables.rows = read_rows(folder + "factory_sounds.csv");
  const std::string notes = folder + "sound_notes.csv";
  if (std::filesystem::exists(notes)) tables.notes = read_notes(notes);
  return tables;
}

std::string name_of_kind(sound_kind kind) {
  switch (kind) {
    case sound_kind::clear:
      return "clear";
    case sound_kind::spoken:
      return "spoken";
    default:
      return "effect";
  }
}

std::string algorithm_of(const sound_row& row) {
  const auto mode = static_cast<int32_t>(row.values.at(value_mode));
  return vocoder_algorithm_of(mode).name;
}

std::vector<double> fundamentals_of(const sound_row& row, const std::vector<int>& notes) {
  const auto value = [&](sound_value which) { return row.values.at(static_cast<std::size_t>(which)); };
  const bool sampled = value(value_sampled) > 0.5;
  // Shapes sound at the key's pitch with the octave at 1, loops with the octave at 0.
  const int octave = static_cast<int>(value(value_octave)) - (sampled ? 0 : 1);
  std::vector<double> fundamentals;
  for (const int note : notes) {
    const double first = hz_of_note(note + 12 * octave + value(value_coarse1));
    const double second = hz_of_note(note + 12 * octave + value(value_coarse2));
    fundamentals.push_back(first);
    if (!sampled && value(value_sync) > 0.5) continue;
    fundamentals.push_back(second);
    if (sampled || !(value(value_ring) > 0.5)) continue;
    fundamentals.push_back(nearest_semitone_hz(first + second));
    const double difference = std::abs(first - second);
    if (difference > 0.25 * first) fundamentals.push_back(nearest_semitone_hz(difference));
  }
  std::sort(fundamentals.begin(), fundamentals.end());
  fundamentals.erase(std::unique(fundamentals.begin(), fundamentals.end()), fundamentals.end());
  return fundamentals;
}
