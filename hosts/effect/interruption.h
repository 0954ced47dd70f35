// MIT License. Ending in good order when a signal asks for it.
#pragma once

#include <signal.h>

#include <stdexcept>

struct interrupted : std::runtime_error {
  explicit interrupted(int number) : std::runtime_error("interrupted"), signal_number(number) {}
  int signal_number;
};

// Holds back the signals that ask a program to end (SIGHUP, SIGINT, SIGPIPE, SIGTERM, SIGXCPU) while it lives, and from
// then on they are only noted, whatever handlers were installed meanwhile. A signal that is ignored from the start, as
// nohup has it, stays ignored. The effect is made under one, as it installs handlers of its own.
class interruption_guard {
 public:
  interruption_guard();
  ~interruption_guard();
  interruption_guard(const interruption_guard&) = delete;
  interruption_guard& operator=(const interruption_guard&) = delete;

 private:
  sigset_t former_mask_{};
  sigset_t ignored_{};
};

// Makes writing beyond the limit on a file's size fail like writing to a full disk, no longer end the process.
void survive_file_size_limit();

// Throws interrupted if a signal has been noted.
void check_interruption();

// Ends the process by `signal_number`, so that the parent sees what it died of.
[[noreturn]] void end_by_signal(int signal_number);
