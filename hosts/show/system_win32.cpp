// MIT License. What kesrel-show needs of the system's process, on Windows.
#include <cstdlib>

#include "hosts/show/system.h"

// The module uses the same run time, and with it the same variables.
void set_variable(const std::string& name, const std::string& value, bool replaces) {
  if (replaces || std::getenv(name.c_str()) == nullptr) _putenv_s(name.c_str(), value.c_str());
}

// Nothing reports anything here.
quiet_errors::quiet_errors() : former_(-1) {}

quiet_errors::~quiet_errors() = default;
