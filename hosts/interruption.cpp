// MIT License. Ending in good order when a signal asks for it.
#include "hosts/interruption.h"

#include <csignal>
#include <cstdlib>

static volatile std::sig_atomic_t noted_signal = 0;

extern "C" {
static void note_signal(int number) {
  noted_signal = number;
}
}

void note_interruptions() {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    if (std::signal(number, note_signal) == SIG_IGN) std::signal(number, SIG_IGN);
  }
}

void check_interruption() {
  if (noted_signal != 0) throw interrupted(noted_signal);
}

void end_by_signal(int signal_number) {
  std::signal(signal_number, SIG_DFL);
  std::raise(signal_number);
  std::_Exit(128 + signal_number);
}
