// MIT License. Orderly termination when the console asks for it.
#include <windows.h>

#include <atomic>
#include <csignal>
#include <cstdlib>

#include "hosts/effect/interruption.h"

namespace {

std::atomic<int> recorded_signal{0};

// On a thread of the system's own.
BOOL WINAPI record_event(DWORD event) {
  recorded_signal = event == CTRL_C_EVENT || event == CTRL_BREAK_EVENT ? SIGINT : SIGTERM;
  return TRUE;
}

}  // namespace

struct interruption_guard::masks {};

interruption_guard::interruption_guard() = default;

interruption_guard::~interruption_guard() {
  SetConsoleCtrlHandler(record_event, FALSE);  // not twice
  SetConsoleCtrlHandler(record_event, TRUE);
}

void survive_file_size_limit() {}

void check_interruption() {
  if (const int number = recorded_signal) throw interrupted(number);
}

void end_by_signal(int signal_number) {
  std::_Exit(128 + signal_number);
}
