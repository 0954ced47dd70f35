// MIT License. Words for tests that put MIDI files together.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

inline std::string big_endian(uint32_t value, int count) {
  std::string bytes;
  for (int shift = 8 * (count - 1); shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift);
  return bytes;
}

inline std::string chunk(const std::string& type, const std::string& content) {
  return type + big_endian(static_cast<uint32_t>(content.size()), 4) + content;
}

//   division   as in the file: ticks per beat, or a time code
inline std::string file_of(uint32_t format, uint32_t division, const std::vector<std::string>& tracks) {
  std::string bytes = chunk(
      "MThd", big_endian(format, 2) + big_endian(static_cast<uint32_t>(tracks.size()), 2) + big_endian(division, 2));
  for (const std::string& track : tracks) bytes += chunk("MTrk", track);
  return bytes;
}

inline const std::string end_mark = {0, '\xff', '\x2f', 0};
