// MIT License. A host that does one harmful thing to itself while it has an effect loaded, for tests that watch how it
// ends.
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string_view>
#include <thread>

#include "tests/plugin/hostile_deeds.h"
#include "tests/plugin/test_host.h"
#include "tests/words/data_home.h"
#include "tests/words/loaded_module.h"

namespace {

test_host& host() {
  static auto* const answering = new test_host;  // answers until the very end
  return *answering;
}

VSTPluginMainProc entry = nullptr;

}  // namespace

AEffect* load() {
  host();
  return entry(&test_host::callback);
}

namespace {

void shake_hands(AEffect* effect) {
  call(effect, effVendorSpecific, handshake_id, 1);
}

[[noreturn]] void wait_for_the_end() {
  for (;;) std::this_thread::sleep_for(std::chrono::hours(1));
}

// Its number is the exit status.
template <int signal_number>
[[noreturn]] void raise_signal() {
  load();
  std::raise(signal_number);
  wait_for_the_end();
}

// Terminated once, or once more while its exit routine hangs.
[[noreturn]] void hang_in_the_exit_routine(bool terminated_twice) {
  load();
  std::atexit([] { wait_for_the_end(); });
  if (terminated_twice) {
    std::thread([] {
      std::this_thread::sleep_for(std::chrono::milliseconds(200));
      terminate_this_process();
    }).detach();
  }
  std::raise(SIGTERM);
  wait_for_the_end();
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
  terminate_this_process();
  wait_for_the_end();
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

constexpr hostile_deed deeds_of_every_system[] = {
    {"raise-abort", raise_signal<SIGABRT>},
    {"raise-float", raise_signal<SIGFPE>},
    {"raise-illegal", raise_signal<SIGILL>},
    {"raise-segment", raise_signal<SIGSEGV>},
    {"raise-terminate", raise_signal<SIGTERM>},
    {"hang", [] { hang_in_the_exit_routine(false); }},
    {"hang-and-terminate", [] { hang_in_the_exit_routine(true); }},
    {"terminate", be_terminated_while_threads_allocate},
    {"late", [] { late_effect = load(); }},
    {"play-on", play_while_the_process_exits},
};

}  // namespace

// Arguments: the module, the deed, and, unless the environment names it, the folder of application data.
int main(int count, char** arguments) {
  if (count < 3) return 1;
  const std::string_view wanted = arguments[2];
  if (count > 3) set_data_home(arguments[3]);
  if (wanted == "late") std::atexit(use_the_effect_at_the_end);
  const auto* const module = new loaded_module(arguments[1]);
  entry = reinterpret_cast<VSTPluginMainProc>(module->symbol("VSTPluginMain"));
  for (const auto& [name, do_it] : deeds_of_every_system) {
    if (name == wanted) do_it();
  }
  for (const auto& [name, do_it] : deeds_of_this_system()) {
    if (name == wanted) do_it();
  }
  return 14;
}
