// MIT License.
#include "tools/default_bank.h"

#include <charconv>
#include <cstdint>
#include <sstream>
#include <stdexcept>

#include "state/bank_image.h"

namespace {

constexpr state::plugin_identity identity{0x4B56344D, 1};  // 'KV4M'

constexpr char byte_order_mark[] = "\xEF\xBB\xBF";
constexpr char meta_info_xml[] =
    R"(<?xml version="1.0" encoding="utf-8"?>
<MetaInfo>
  <Attribute id="MediaType" value="VstPreset" type="string" flags="writeProtected" />
  <Attribute id="PlugInCategory" value="Fx" type="string" flags="writeProtected" />
  <Attribute id="PlugInName" value="Kesrel Vocoder 4 ME" type="string" flags="writeProtected" />
  <Attribute id="PlugInVendor" value="Quorvant" type="string" flags="writeProtected" />
</MetaInfo>)";

std::string trimmed(const std::string& text) {
  const auto first = text.find_first_not_of(' ');
  if (first == std::string::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

bool read_switch(const std::string& text) {
  if (text != "on" && text != "off") throw std::runtime_error("'" + text + "' is neither on nor off");
  return text == "on";
}

void read_keys(const std::string& text, std::array<uint8_t, state::stored_key_count>* keys) {
  std::istringstream numbers(text);
  for (std::string number; numbers >> number;) {
    size_t key = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), key);
    if (error != std::errc{} || end != number.data() + number.size() || key >= keys->size()) {
      throw std::runtime_error("'" + number + "' is no key");
    }
    (*keys)[key] = 1;
  }
}

state::program program_of_row(const std::string& row) {
  std::vector<std::string> cells;
  std::istringstream rest(row);
  for (std::string cell; std::getline(rest, cell, ',');) cells.push_back(trimmed(cell));
  if (cells.size() != 6) throw std::runtime_error("six cells are wanted");
  state::program program;
  program.name = cells[0];
  program.sound_uuid = cells[1];
  program.chorus_on = read_switch(cells[2]);
  program.reverb_on = read_switch(cells[3]);
  program.octave_on = read_switch(cells[4]);
  read_keys(cells[5], &program.keys);
  return program;
}

std::string little_endian(uint64_t number, int bytes) {
  std::string text;
  for (int byte = 0; byte < bytes; ++byte) text += static_cast<char>(number >> (8 * byte) & 0xFF);
  return text;
}

std::string list_entry(const char* id, uint64_t offset, uint64_t size) {
  return id + little_endian(offset, 8) + little_endian(size, 8);
}

}  // namespace

std::vector<state::program> programs_of_table(const std::string& table) {
  std::vector<state::program> programs;
  std::istringstream rows(table);
  bool below_headings = false;
  for (std::string row; std::getline(rows, row);) {
    if (row.empty() || row.front() == '#') continue;
    if (!std::exchange(below_headings, true)) continue;
    try {
      programs.push_back(program_of_row(row));
    } catch (const std::runtime_error& fault) {
      throw std::runtime_error(std::string(fault.what()) + ", in '" + row + "'");
    }
  }
  return programs;
}

std::string default_bank_file(const std::vector<state::program>& programs) {
  std::vector<chunks::chunk> records;
  records.reserve(programs.size());
  for (const auto& program : programs) records.push_back(state::to_chunk(program));
  const state::image_bytes image = state::bank_image(identity, 0, records);
  const std::string meta_info = std::string(byte_order_mark) + meta_info_xml;

  std::string file(reinterpret_cast<const char*>(image->bytes()), image->size());
  file += meta_info;
  file += "List" + little_endian(3, 4);
  file += list_entry("Comp", 0, image->size());
  file += list_entry("Cont", image->size(), 0);  // no state of a controller
  file += list_entry("Info", image->size(), meta_info.size());
  return file;
}
