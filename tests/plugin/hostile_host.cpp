// MIT License. A host that does one harmful thing to itself while it has an effect loaded, for tests that watch how it
// ends.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <thread>
#include <utility>

#include "tests/plugin/test_host.h"

// The crash handler exits from within a signal, which the thread sanitizer would report.
extern "C" __attribute__((visibility("default"))) const char* __tsan_default_options() {  // NOLINT
  return "report_signal_unsafe=0";
}
// A host that crashes frees nothing.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {  // NOLINT
  return "detect_leaks=0";
}

namespace {

test_host& host() {
  static auto* const answering = new test_host;  // answers until the very end
  return *answering;
}

VSTPluginMainProc entry = nullptr;

AEffect* load() {
  host();
  return entry(&test_host::callback);
}

void shake_hands(AEffect* effect) {
  call(effect, effVendorSpecific, handshake_id, 1);
}

[[noreturn]] void wait_for_the_end() {
  for (;;) pause();
}

// The heap notices while it holds its lock. A second thread makes it use that lock.
[[noreturn]] void free_twice() {
  load();
  std::thread(wait_for_the_end).detach();
  void* volatile large = std::malloc(5000);
  void* volatile next = std::malloc(5000);
  std::free(large);
  std::free(large);
  std::free(next);
  std::abort();  // for a sanitizer's heap that doesn't mind
}

// Terminated once, or once more while its exit routine hangs.
[[noreturn]] void hang_in_the_exit_routine(bool terminated_twice) {
  load();
  std::atexit([] { wait_for_the_end(); });
  if (terminated_twice) {
    std::thread([] {
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      kill(getpid(), SIGTERM);
    }).detach();
  }
  std::raise(SIGTERM);
  wait_for_the_end();
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
  load();
  std::exit(sink(0));
}

[[noreturn]] void be_terminated_while_threads_allocate() {
  load();
  for (int worker = 0; worker < 4; ++worker) {
    std::thread([] {
      for (size_t size = 1;; size = size * 7 % 9973) {
        void* volatile block = std::malloc(size);
        std::free(block);
      }
    }).detach();
  }
  std::this_thread::sleep_for(std::chrono::milliseconds(20));
  kill(getpid(), SIGTERM);
  wait_for_the_end();
}

// 10 when an effect came, 11 when none did.
[[noreturn]] void run_out_of_descriptors() {
  while (open("/dev/null", O_RDONLY) >= 0) {
  }
  std::_Exit(load() != nullptr ? 10 : 11);
}

AEffect* late_effect = nullptr;

// Runs after the exit routines of everything that was loaded later than it was registered.
void use_the_effect_at_the_end() {
  shake_hands(late_effect);
  std::array<char, 64> damaged{'C', 'c', 'n', 'K', 0x7F};
  call(late_effect, effSetChunk, 0, static_cast<VstIntPtr>(damaged.size()), damaged.data());
  void* image = nullptr;
  const bool saved = call(late_effect, effGetChunk, 0, 0, &image) == 3538;
  call(late_effect, effClose);
  AEffect* const another = load();
  shake_hands(another);
  stereo_block block(64);
  block.run(another);
  call(another, effClose);
  std::_Exit(saved ? 12 : 13);
}

void play_while_the_process_exits() {
  AEffect* const effect = load();
  shake_hands(effect);
  static std::atomic<int> blocks{0};
  std::thread([effect] {
    stereo_block block(64);
    float* half[] = {block.left.data(), nullptr};  // logs at every block
    for (;; ++blocks) block.run_with(half, effect);
  }).detach();
  while (blocks < 3) std::this_thread::yield();
}

}  // namespace

int main(int count, char** arguments) {
  const std::pair<std::string_view, void (*)()> deeds[] = {
      {"free-twice", free_twice},
      {"hang", [] { hang_in_the_exit_routine(false); }},
      {"hang-and-terminate", [] { hang_in_the_exit_routine(true); }},
      {"overflow", overflow_the_stack},
      {"terminate", be_terminated_while_threads_allocate},
      {"no-descriptors", run_out_of_descriptors},
      {"late", [] { late_effect = load(); }},
      {"play-on", play_while_the_process_exits},
  };
  const std::string_view wanted = count == 3 ? arguments[2] : "";
  if (wanted == "late") std::atexit(use_the_effect_at_the_end);
  void* const module = count == 3 ? dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL) : nullptr;
  if (module == nullptr) return 1;
  entry = reinterpret_cast<VSTPluginMainProc>(dlsym(module, "VSTPluginMain"));
  constexpr rlimit no_core{0, 0};
  setrlimit(RLIMIT_CORE, &no_core);
  for (const auto& [name, deed] : deeds) {
    if (name == wanted) deed();
  }
  return 14;
}
