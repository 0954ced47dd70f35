// MIT License. What kesrel-show needs of the system's process, on POSIX.
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

#include "hosts/show/system.h"

void set_variable(const std::string& name, const std::string& value, bool replaces) {
  setenv(name.c_str(), value.c_str(), replaces ? 1 : 0);
}

quiet_errors::quiet_errors() : former_(fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)) {
  std::fflush(stderr);
  const int nothing = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (former_ >= 0 && nothing >= 0) dup2(nothing, STDERR_FILENO);
  if (nothing >= 0) close(nothing);
}

quiet_errors::~quiet_errors() {
  if (former_ < 0) return;
  std::fflush(stderr);
  dup2(former_, STDERR_FILENO);
  close(former_);
}
