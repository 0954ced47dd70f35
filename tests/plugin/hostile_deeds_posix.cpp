// MIT License.
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <thread>

#include "tests/plugin/hostile_deeds.h"

// The crash handler exits from within a signal, which the thread sanitizer would report.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options() {  // NOLINT
  return "report_signal_unsafe=0";
}
// A host that crashes frees nothing.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {  // NOLINT
  return "detect_leaks=0";
}

namespace {

// Deeds that end by a signal leave no image of the process behind.
void leave_no_core() {
  constexpr rlimit no_core{0, 0};
  setrlimit(RLIMIT_CORE, &no_core);
}

// The heap notices while it holds its lock. A second thread makes it use that lock.
[[noreturn]] void free_twice() {
  leave_no_core();
  load();
  std::thread([] { pause(); }).detach();
  void* volatile large = std::malloc(5000);
  void* volatile next = std::malloc(5000);
  std::free(large);
  std::free(large);
  std::free(next);
  std::abort();  // for a sanitizer's heap that doesn't mind
}

// NOLINTNEXTLINE(misc-no-recursion)
[[gnu::noinline]] int sink(int floor) {
  volatile char frame[4096];
  frame[0] = static_cast<char>(floor);
  return floor == INT_MIN ? 0 : sink(floor - 1) + frame[0];
}

[[noreturn]] void overflow_the_stack() {
  static std::array<char, 16384> alternate;
  const stack_t stack{.ss_sp = alternate.data(), .ss_flags = 0, .ss_size = alternate.size()};
  sigaltstack(&stack, nullptr);
  leave_no_core();
  load();
  std::exit(sink(0));
}

// 10 when an effect came, 11 when none did.
[[noreturn]] void run_out_of_descriptors() {
  while (open("/dev/null", O_RDONLY) >= 0) {
  }
  std::_Exit(load() != nullptr ? 10 : 11);
}

constexpr hostile_deed deeds[] = {
    {"free-twice", free_twice},
    {"overflow", overflow_the_stack},
    {"no-descriptors", run_out_of_descriptors},
};

}  // namespace

std::span<const hostile_deed> deeds_of_this_system() {
  return deeds;
}

void terminate_this_process() {
  kill(getpid(), SIGTERM);
}
