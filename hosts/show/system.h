// MIT License. What kesrel-show needs of the system's process.
#pragma once

#include <string>

// Sets an environment variable, for modules that are loaded later. Without `replaces` one that is set stays.
void set_variable(const std::string& name, const std::string& value, bool replaces);

// While it lives, nothing that any thread writes to standard error appears: sound libraries report each device that
// they don't find there, and offer no way to stop it.
class quiet_errors {
 public:
  quiet_errors();
  ~quiet_errors();
  quiet_errors(const quiet_errors&) = delete;
  quiet_errors& operator=(const quiet_errors&) = delete;

 private:
  int former_;
};
