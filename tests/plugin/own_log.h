// MIT License. A log folder of the test's own, and a look at what the plug-in writes there.
#pragma once

#include <string>

// Every program that links own_log.cpp has an application data folder of its own, which goes with it.

// Texts are given each with a line feed behind it, without times, levels and headers.

// In all files of the folder, in no order of files: what modules and child processes log, too.
std::string logged_texts();

// What this program's own code logs while it lives.
class log_capture {
 public:
  log_capture() : earlier_(own_texts()) {}
  std::string text() const { return own_texts().substr(earlier_.size()); }

 private:
  static std::string own_texts();

  std::string earlier_;
};
