// MIT License. Orderly termination when a signal asks for it.
#include <signal.h>

#include <cstdlib>

#include "hosts/effect/interruption.h"

namespace {

constexpr int ending_signals[] = {SIGHUP, SIGINT, SIGPIPE, SIGTERM, SIGXCPU};

volatile sig_atomic_t recorded_signal = 0;

extern "C" void record_signal(int number) {
  recorded_signal = number;
}

}  // namespace

struct interruption_guard::masks {
  sigset_t former{};
  sigset_t ignored{};
};

interruption_guard::interruption_guard() : masks_(std::make_unique<masks>()) {
  sigset_t held;
  sigemptyset(&held);
  sigemptyset(&masks_->ignored);
  for (const int number : ending_signals) {
    sigaddset(&held, number);
    struct sigaction present {};
    sigaction(number, nullptr, &present);
    if (present.sa_handler == SIG_IGN) sigaddset(&masks_->ignored, number);
  }
  pthread_sigmask(SIG_BLOCK, &held, &masks_->former);
}

interruption_guard::~interruption_guard() {
  for (const int number : ending_signals) {
    struct sigaction recording {};
    recording.sa_handler = sigismember(&masks_->ignored, number) == 1 ? SIG_IGN : record_signal;
    recording.sa_flags = SA_RESTART;
    sigaction(number, &recording, nullptr);
  }
  pthread_sigmask(SIG_SETMASK, &masks_->former, nullptr);
}

void survive_file_size_limit() {
  signal(SIGXFSZ, SIG_IGN);
}

void check_interruption() {
  if (recorded_signal != 0) throw interrupted(recorded_signal);
}

void end_by_signal(int signal_number) {
  signal(signal_number, SIG_DFL);
  raise(signal_number);
  std::_Exit(128 + signal_number);
}
