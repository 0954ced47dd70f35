// MIT License. The crash handler on POSIX systems.
#include <csignal>
#include <cstdlib>

#include "plugin/crash_handler.h"
#include "support/logbook.h"

namespace {

constexpr int k_crash_signals[] = {SIGABRT, SIGFPE, SIGILL, SIGSEGV, SIGTERM};

// Neither the log nor exit() is safe in a handler by POSIX's list. The process is lost either way, and a line in the
// log is worth the risk of ending worse.
[[noreturn]] void end_process(int signal_number) {
  halvern::logbook_impl::instance().message("crash!", halvern::log_level_critical,
                                            halvern::log_dest_file | halvern::log_dest_debugger);
  std::exit(signal_number);
}

}  // namespace

void install_crash_handler() {
  for (const int signal_number : k_crash_signals) std::signal(signal_number, end_process);
}
