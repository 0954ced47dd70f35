// MIT License. The crash handler on POSIX systems.
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdlib>

#include "plugin/crash_handler.h"
#include "support/logbook.h"

namespace {

constexpr int crash_signals[] = {SIGABRT, SIGFPE, SIGILL, SIGSEGV, SIGTERM};

// How long exit() may take. It may wait in vain for a lock that the crashed thread holds.
constexpr unsigned longest_exit_s = 5;

// Gives a signal its default action, which ends the process, and lets this thread receive it.
void let_end_the_process(int signal_number) {
  std::signal(signal_number, SIG_DFL);
  sigset_t one;
  sigemptyset(&one);
  sigaddset(&one, signal_number);
  pthread_sigmask(SIG_UNBLOCK, &one, nullptr);
}

// exit() isn't async-signal-safe: the host's exit routines may take any lock, the heap's included. So the line is
// logged first, and the alarm ends the process where exit() doesn't.
[[noreturn]] void end_process(int signal_number) {
  let_end_the_process(SIGALRM);
  alarm(longest_exit_s);
  for (const int further : crash_signals) let_end_the_process(further);
  static std::atomic_flag entered;
  if (entered.test_and_set()) _exit(signal_number);  // two threads crash at the same moment
  halvern::logbook_impl::instance().crash_message("crash!");
  std::exit(signal_number);
}

}  // namespace

void install_crash_handler() {
  halvern::remember_time_zone();
  halvern::logbook_impl::instance();  // exists before the first crash
  struct sigaction action {};
  action.sa_handler = end_process;
  // On the alternate stack if the host has set one: an overflowed stack has no room for a handler.
  action.sa_flags = static_cast<int>(SA_ONSTACK | SA_RESETHAND);
  sigemptyset(&action.sa_mask);
  for (const int signal_number : crash_signals) sigaction(signal_number, &action, nullptr);
}
