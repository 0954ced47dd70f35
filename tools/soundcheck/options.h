// MIT License. The command line of kesrel-soundcheck.
#pragma once

#include <string>
#include <vector>

struct soundcheck_options {
  std::string module;      // empty for the one beside this program
  std::string resources;   // folder with sounds/ and demo/
  std::string voice;       // name of the only test voice; empty for all
  std::string sounds;      // numbers and ranges such as "0,5-9"; empty for all
  std::string csv;         // file to write; empty for none
  std::string report;      // folder for the listening page; empty for none
  std::string write_docs;  // the page about all sounds; nothing else is done then
  bool programs = false;   // the module's programs as well
  int threads = 0;         // 0 for one per core
};

enum class command_line { check, done };

// Reads the command line.
//   returns   done when help has been printed
//   throws    failure for an option that isn't known or is incomplete
command_line read_command_line(int argc, const char* const* argv, soundcheck_options* options);

// The numbers in a list such as "0,5-9", ascending, without duplicates. Throws failure when it is anything else or
// names a number from `end` on.
std::vector<int> parse_numbers(const std::string& list, int end);
