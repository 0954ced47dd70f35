// MIT License. The figures as text.
#include "tools/soundcheck/table.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace {

bool is_number(const std::string& cell) {
  return cell == "-" || cell.find_first_not_of("+-.0123456789") == std::string::npos;
}

std::string signed_text(double value, int digits) {
  const std::string text = number_text(value, digits);
  return value > 0.0 ? std::string("+").append(text) : text;
}

// The figures of the first voice that speaks, or of the first at all.
const voice_figures& main_voice(const sound_figures& sound) {
  const auto speaks = [](const voice_figures& voice) { return !std::isnan(voice.estoi); };
  const auto found = std::find_if(sound.voices.begin(), sound.voices.end(), speaks);
  return found == sound.voices.end() ? sound.voices.front() : *found;
}

double peak_of_all_voices_db(const sound_figures& sound) {
  double highest = -HUGE_VAL;
  for (const auto& voice : sound.voices) highest = std::max(highest, voice.true_peak_db);
  return highest;
}

std::string csv_cell(const std::string& cell) {
  if (cell == "-") return "";
  if (cell.find(',') == std::string::npos) return cell;
  std::string quoted(1, '"');
  quoted.append(cell).push_back('"');
  return quoted;
}

}  // namespace

std::string number_text(double value, int digits) {
  if (std::isnan(value)) return "-";
  if (std::isinf(value)) return value > 0.0 ? "inf" : "-inf";
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", digits, value);
  return text;
}

std::string text_table::aligned() const {
  std::vector<std::size_t> widths;
  std::vector<bool> to_right;
  for (std::size_t column = 0; column < headings_.size(); ++column) {
    std::size_t width = headings_[column].size();
    bool numeric = true;
    for (const auto& row : rows_) {
      width = std::max(width, row[column].size());
      numeric = numeric && is_number(row[column]);
    }
    widths.push_back(width);
    to_right.push_back(numeric);
  }
  std::ostringstream text;
  const auto print = [&](const std::vector<std::string>& cells) {
    std::string line;
    for (std::size_t column = 0; column < cells.size(); ++column) {
      const std::string padding(widths[column] - cells[column].size(), ' ');
      if (column > 0) line.append(2, ' ');
      if (to_right[column]) line.append(padding);
      line.append(cells[column]);
      if (!to_right[column]) line.append(padding);
    }
    line.erase(line.find_last_not_of(' ') + 1);
    text << line << "\n";
  };
  print(headings_);
  for (const auto& row : rows_) print(row);
  return text.str();
}

std::string text_table::csv() const {
  std::string text;
  const auto print = [&](const std::vector<std::string>& cells) {
    for (std::size_t column = 0; column < cells.size(); ++column) {
      if (column > 0) text.push_back(',');
      text.append(csv_cell(cells[column]));
    }
    text += "\n";
  };
  print(headings_);
  for (const auto& row : rows_) print(row);
  return text;
}

text_table sound_table(const std::vector<sound_figures>& sounds, const sound_tables& tables) {
  std::vector<std::string> headings = {"nr", "sound", "kind"};
  if (!sounds.empty()) {
    for (const auto& voice : sounds.front().voices) headings.push_back("LU:" + voice.voice);
    headings.emplace_back("peak");
    headings.emplace_back("centre");
    for (const auto& voice : sounds.front().voices) {
      if (!std::isnan(voice.estoi)) headings.push_back("ES:" + voice.voice);
    }
  }
  for (const char* heading : {"ES+rev", "env", "sib", "pause", "pau+rev", "chord", "tune", "beat", "depth", "rev s",
                              "stereo", "+chorus", "near", "dist"}) {
    headings.emplace_back(heading);
  }
  text_table table(headings);
  for (const auto& sound : sounds) {
    std::vector<std::string> cells = {std::to_string(sound.number), sound.name,
                                      name_of_kind(tables.note(sound.number).kind)};
    for (const auto& voice : sound.voices) cells.push_back(number_text(voice.loudness_lufs, 1));
    const voice_figures& main = main_voice(sound);
    cells.push_back(number_text(peak_of_all_voices_db(sound), 1));
    cells.push_back(number_text(main.centroid_hz, 0));
    for (const auto& voice : sound.voices) {
      if (!std::isnan(voice.estoi)) cells.push_back(number_text(voice.estoi, 2));
    }
    cells.push_back(number_text(main.estoi_with_reverb, 2));
    cells.push_back(number_text(main.envelope_correlation, 2));
    cells.push_back(signed_text(main.sibilance_db, 1));
    cells.push_back(number_text(main.pauses_db, 1));
    cells.push_back(number_text(main.pauses_with_reverb_db, 1));
    cells.push_back(number_text(main.chord_share, 2));
    cells.push_back(number_text(sound.tuning_cents, 1));
    cells.push_back(number_text(sound.modulation_hz, 1));
    cells.push_back(number_text(sound.modulation_depth, 2));
    cells.push_back(number_text(sound.reverb_seconds, 2));
    cells.push_back(number_text(sound.stereo_correlation, 2));
    cells.push_back(number_text(sound.stereo_correlation_with_chorus, 2));
    cells.push_back(sound.nearest < 0 ? "-" : std::to_string(sound.nearest));
    cells.push_back(sound.nearest < 0 ? "-" : number_text(sound.nearest_db, 1));
    table.add(std::move(cells));
  }
  return table;
}

text_table program_table(const std::vector<program_figures>& programs) {
  text_table table({"nr", "program", "sound", "LUFS", "peak", "ESTOI", "pause"});
  for (const auto& each : programs) {
    table.add({std::to_string(each.number), each.name, std::to_string(each.sound), number_text(each.loudness_lufs, 1),
               number_text(each.true_peak_db, 1), number_text(each.estoi, 2), number_text(each.pauses_db, 1)});
  }
  return table;
}
