// MIT License. A log folder for the tests, and what the plug-in writes there.
#pragma once

#include <string>

// Every program that links own_log.cpp has an application data folder of its own, removed at its end.

// Number of crashes in the log files of a data folder, the program's own by default. They may be those of modules and
// of child processes.
long logged_crashes(const std::string& application_data = "");

// What this program's own code has logged since the object was made: each text followed by a line feed, without time
// and level.
class log_capture {
 public:
  log_capture() : earlier_(own_texts()) {}
  std::string text() const { return own_texts().substr(earlier_.size()); }

 private:
  static std::string own_texts();

  std::string earlier_;
};
