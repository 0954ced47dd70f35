// MIT License. Ending in good order when a signal asks for it.
#pragma once

#include <stdexcept>

struct interrupted : std::runtime_error {
  explicit interrupted(int number) : std::runtime_error("interrupted"), signal_number(number) {}
  int signal_number;
};

// From now on SIGINT, SIGTERM and SIGHUP are only noted. A signal that the parent process told us to ignore stays
// ignored. To be called after the effect is made, as that installs a handler of its own.
void note_interruptions();

// Throws interrupted if a signal has been noted.
void check_interruption();

// Ends the process by `signal_number`, so that the parent sees what it died of.
[[noreturn]] void end_by_signal(int signal_number);
