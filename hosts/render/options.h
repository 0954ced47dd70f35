// MIT License. The command line of kesrel-render.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "hosts/voice/channels.h"

constexpr int smallest_block = 1;
constexpr int largest_block = 65536;

struct render_options {
  std::string voice;                  // sound file to read; empty when nothing is rendered
  std::string output;                 // sound file to write; likewise. Of both, "-" is a standard stream
  std::optional<std::string> format;  // where it isn't what the ending of `output` says
  std::string plugin;                 // module with the effect; empty means the one beside this program
  voice_channel channel = voice_channel::automatic;
  double wet_db = 0.0;           // of what the effect makes
  std::optional<double> dry_db;  // of the voice, which is left out otherwise
  double gain_db = 0.0;
  std::optional<double> normalize;  // LUFS
  // Options that aren't given leave the current program as it is.
  std::optional<std::string> load_state;  // file with a bank or a single program
  std::optional<std::string> program;     // number or name
  std::optional<std::string> sound;       // number, name or uuid
  std::optional<std::string> keys;        // key indices, note names or a chord
  std::optional<std::string> chords;      // over time, see schedule_of_chords
  std::optional<double> bpm;              // of the chords' bars
  int beats = 4;                          // in a bar
  std::optional<std::string> midi;        // file with notes
  std::optional<bool> chorus;
  std::optional<bool> reverb;
  std::optional<bool> octave;
  std::optional<std::string> save_state;  // file to write
  // Folders for renderings with each sound or program, in place of `output`.
  std::optional<std::string> all_sounds;
  std::optional<std::string> all_programs;
  std::vector<std::string> passed_on;  // the command's words that apply to each of these
  int block = 512;                     // samples per channel and call
  bool native_rate = false;            // run the effect at the voice's rate instead of 44100 Hz
  bool compensate = false;             // drop the latency and the tail
  bool float_samples = false;
  bool list_sounds = false;
  bool list_programs = false;
  bool quiet = false;
};

enum class command_line { render, done };

// Reads the command line into `options`.
//   returns   done when help or the version was asked for and has been printed
//   throws    failure for a command line that cannot be understood
command_line read_command_line(int argc, const char* const* argv, render_options* options);
