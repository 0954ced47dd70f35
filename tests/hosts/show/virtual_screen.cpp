// MIT License. An X server without a screen, by Xvfb.
#include "tests/hosts/show/virtual_screen.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

virtual_screen::virtual_screen() {
  int ends[2];
  if (pipe(ends) != 0) throw std::runtime_error("no pipe");
  server_ = fork();
  if (server_ == 0) {
    close(ends[0]);
    if (freopen("/dev/null", "w", stderr) == nullptr) _exit(127);  // it reports the numbers that are taken
    const std::string descriptor = std::to_string(ends[1]);
    execlp("Xvfb", "Xvfb", "-displayfd", descriptor.c_str(), "-screen", "0", "500x400x24", "-nolisten", "tcp",
           "-noreset", nullptr);
    _exit(127);
  }
  close(ends[1]);
  std::string number;  // the server writes it with a line break when it is ready
  for (char digit = 0; read(ends[0], &digit, 1) == 1 && digit != '\n';) number += digit;
  close(ends[0]);
  if (number.empty()) throw std::runtime_error("Xvfb doesn't start");
  setenv("DISPLAY", (":" + number).c_str(), 1);
}

virtual_screen::~virtual_screen() {
  kill(server_, SIGTERM);
  waitpid(server_, nullptr, 0);
}
