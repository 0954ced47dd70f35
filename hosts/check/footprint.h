// MIT License. What a plug-in may leave behind in the host's process and in the user's home.
#pragma once

#include <string>
#include <vector>

// The process as it is now.
struct process_footprint {
  std::vector<std::string> signals;      // one text for each signal's handler and flags
  std::vector<std::string> environment;  // variables with their values, sorted
  std::vector<std::string> open_files;   // what the descriptors refer to, sorted
  int threads = 0;
  std::string floating_point;  // rounding, exceptions and flushing
  std::string locale;
  std::string folder;  // the current one
};
process_footprint footprint_now();

// The differences as texts for users, empty without any. Threads may take a moment to end: the caller waits.
std::vector<std::string> differences(const process_footprint& before, const process_footprint& after);

// Files and folders under `folder`, relative to it, sorted.
std::vector<std::string> files_in(const std::string& folder);

// Control and status bits of the floating-point unit, without the exceptions that it has noted.
unsigned floating_point_mode();
void set_floating_point_mode(unsigned mode);
// Flush-to-zero and denormals-are-zero, as many hosts set them.
unsigned flushing_mode();
