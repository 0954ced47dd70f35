// MIT License. The command line of kesrel-plugin-check.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "hosts/check/plugin_under_test.h"

struct check_options {
  std::string path;
  plugin_format format = plugin_format::vst2;
  std::vector<std::string> only;  // names of checks; all when empty
  uint64_t seed = 1;
  double seconds = 120.0;  // for each check
  bool strict = false;
  bool verbose = false;
  bool in_own_process = true;  // on POSIX; a debugger would rather not
};

// Nothing when the command line asked for help or for the list of checks, which are printed.
//   throws   unusable with the reason when it isn't valid
std::optional<check_options> read_check_options(int argc, const char* const* argv);
