// MIT License. Runs a check where it can do no harm.
#pragma once

#include <functional>
#include <string>

enum class verdict_kind { pass, fail, skip };

struct verdict {
  verdict_kind kind = verdict_kind::fail;
  std::string text;  // figures or the reason, on one line
};

struct isolation {
  std::string home;      // an empty folder, which is the user's home and the place of all temporary files
  double seconds = 60;   // after which a check has failed
  bool verbose = false;  // let the plug-in write to this program's outputs
};

// Runs `check`, on POSIX in a process of its own, so that a crash or an endless loop is a verdict as well. On Windows
// in this process, whose settings stay as they are: give each check a process by --only.
verdict run_isolated(const isolation& settings, const std::function<verdict()>& check);
