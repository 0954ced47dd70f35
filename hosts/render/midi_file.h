// MIT License. Standard MIDI files.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// A message of a channel, at its time.
struct song_event {
  double seconds;  // from the start
  uint8_t status;  // 0x80 to 0xef
  uint8_t first;
  uint8_t second;  // 0 for messages with one data byte
};

struct midi_song {
  std::vector<song_event> events;  // of all tracks, in order of time; at one time in order of the tracks
  double seconds = 0.0;            // when the last track ends
};

// Reads a file of format 0 or 1, whose tracks sound together.
//   name     how messages refer to it, for example "MIDI file 'song.mid'"
//   formats  Standard MIDI Files 1.0: beats with a tempo map, or time code of 24, 25, 29.97 or 30 frames a second;
//            running status, also across system exclusive and meta events, as many programs write it. A track may lack
//            its end mark, and what follows the mark is skipped, as are chunks that aren't tracks
//   throws   failure for what isn't such a file, is cut short or holds impossible bytes
midi_song parse_midi(const std::string& name, std::string_view bytes);

// The same, of a file. Throws failure too when it can't be read, or has more than 64 MB.
midi_song read_midi_file(const std::string& path);
