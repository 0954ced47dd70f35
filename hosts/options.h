// MIT License. The command line of kesrel-render.
#pragma once

#include <string>

constexpr int smallest_block = 1;
constexpr int largest_block = 65536;

struct render_options {
  std::string voice;              // sound file to read
  std::string output;             // WAV file to write
  std::string sound = "0";        // number, name or uuid
  std::string keys = "12,16,19";  // key indices or note names; a major chord in the middle of the keyboard
  int block = 512;                // samples per channel and call
  bool chorus = false;
  bool reverb = false;
  bool octave = false;
  bool compensate = false;  // drop the latency and the tail
  bool float_samples = false;
  bool list_sounds = false;
  bool quiet = false;
};

enum class command_line { render, done };

// Reads the command line into `options`.
//   returns   done when it asked for help or the version, which are then printed
//   throws    failure for what it cannot read
command_line read_command_line(int argc, const char* const* argv, render_options* options);
