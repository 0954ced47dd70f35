// MIT License. The command line of kesrel-show.
#pragma once

#include <optional>
#include <string>

struct show_options {
  std::string plugin;                     // module with the effect; empty means the one beside this program
  std::string voice;                      // sound file; empty means the demo voice
  std::optional<std::string> load_state;  // file with a bank or a single program
  std::optional<std::string> program;     // number or name
  std::optional<std::string> sound;       // number, name or uuid
  std::optional<std::string> save_state;  // file to write at the end
  std::optional<std::string> screenshot;  // PNG file to write
  std::optional<double> scale;            // of the window; without it the display's
  std::optional<double> seconds;          // when to leave
  bool silent = false;
  bool verbose = false;
};

// Limits of the window's scale, and the steps between them.
constexpr double smallest_scale = 1.0;
constexpr double largest_scale = 3.0;
constexpr double scale_step = 0.25;

// The possible scale that is nearest to `scale`, which may be any number.
double nearest_scale(double scale);

// Reads the command line.
//   returns   nothing when help or the version was asked for and has been printed
//   throws    failure for a command line that cannot be understood
std::optional<show_options> read_show_options(int argc, const char* const* argv);
