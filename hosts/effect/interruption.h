// MIT License. Orderly termination when a signal asks for it.
#pragma once

#include <memory>
#include <stdexcept>

struct interrupted : std::runtime_error {
  explicit interrupted(int number) : std::runtime_error("interrupted"), signal_number(number) {}
  int signal_number;
};

// Blocks the signals that ask a program to end (SIGHUP, SIGINT, SIGPIPE, SIGTERM, SIGXCPU) during its lifetime. Its
// destructor replaces whatever handlers were installed meanwhile by one that only records the signal. A signal that was
// ignored before, as under nohup, stays ignored. The effect is created under a guard, as it installs its own handlers.
// On Windows SIGINT stands for Ctrl+C, and SIGTERM for the end of the console or the session.
class interruption_guard {
 public:
  interruption_guard();
  ~interruption_guard();
  interruption_guard(const interruption_guard&) = delete;
  interruption_guard& operator=(const interruption_guard&) = delete;

 private:
  struct masks;
  std::unique_ptr<masks> masks_;
};

// Makes a write beyond the limit on file sizes fail, as on a full disk, instead of ending the process.
void survive_file_size_limit();

// Throws interrupted if a signal has been recorded.
void check_interruption();

// Ends the process by `signal_number`, so that the parent sees that signal as the cause.
[[noreturn]] void end_by_signal(int signal_number);
