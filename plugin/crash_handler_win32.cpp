// MIT License. The crash handler on Windows.
#include <windows.h>

#include <atomic>
#include <csignal>
#include <cstdlib>

#include "plugin/crash_handler.h"
#include "support/logbook.h"

namespace {

// Each C library of a process has its own handlers, and this module's is the one that Windows comes with: a host with
// another one keeps its handlers. Of errors of the processor, every thread has its own handler, so those of the thread
// that makes the effect are caught.
constexpr int crash_signals[] = {SIGABRT, SIGFPE, SIGILL, SIGSEGV, SIGTERM};
static_assert(SIGABRT == 22 && SIGFPE == 8 && SIGILL == 4 && SIGSEGV == 11 && SIGTERM == 15);

// How long exit() may take. It may wait in vain for a lock that the crashed thread holds.
constexpr DWORD longest_exit_ms = 5000;

[[noreturn]] void end_at_once(int signal_number) {
  TerminateProcess(GetCurrentProcess(), static_cast<UINT>(signal_number));
  for (;;) Sleep(INFINITE);
}

DWORD WINAPI end_after_a_while(void* signal_number) {
  Sleep(longest_exit_ms);
  end_at_once(static_cast<int>(reinterpret_cast<intptr_t>(signal_number)));
}

// The line is logged before exit(), whose routines may take any lock. A thread ends the process where they wait in
// vain. exit() stops that thread, too, and then detaches the modules, when nobody is left to release a lock of the
// heap. The first to run at that time are this module's own exit routines, the latest before the others, so that one
// ends the process.
[[noreturn]] void end_process(int signal_number) {
  static std::atomic_flag entered;
  if (entered.test_and_set()) end_at_once(signal_number);
  for (const int further : crash_signals) std::signal(further, end_at_once);
  void* const argument = reinterpret_cast<void*>(static_cast<intptr_t>(signal_number));
  const HANDLE watchdog = CreateThread(nullptr, 0, end_after_a_while, argument, 0, nullptr);
  halvern::logbook_impl::instance().crash_message("crash!");
  if (watchdog == nullptr) end_at_once(signal_number);
  static const int signal_of_exit = signal_number;
  std::atexit([] { end_at_once(signal_of_exit); });
  std::exit(signal_number);
}

// FreeLibrary has no effect from now on: the handlers and the logbook's exit routine outlive the last effect.
void keep_this_module() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                     reinterpret_cast<LPCWSTR>(&keep_this_module), &module);
}

}  // namespace

void install_crash_handler() {
  keep_this_module();
  halvern::remember_time_zone();
  halvern::logbook_impl::instance();  // exists before the first crash
  for (const int signal_number : crash_signals) std::signal(signal_number, end_process);
}
