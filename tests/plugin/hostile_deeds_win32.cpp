// MIT License.
#include <windows.h>

#include <csignal>
#include <cstdlib>

#include "tests/plugin/hostile_deeds.h"

namespace {

void read_where_nothing_is() {
  load();
  const volatile int* volatile nowhere = nullptr;
  std::_Exit(*nowhere);
}

// The module keeps itself, and its handler works on.
void unload_the_module_and_crash() {
  call(load(), effClose);
  const HMODULE module = GetModuleHandleA("KesrelVocoder4ME.dll");
  for (int more = 0; more < 3; ++more) FreeLibrary(module);
  if (GetModuleHandleA("KesrelVocoder4ME.dll") == nullptr) std::_Exit(11);
  std::raise(SIGILL);
}

constexpr hostile_deed deeds[] = {
    {"read-nowhere", read_where_nothing_is},
    {"unload", unload_the_module_and_crash},
};

}  // namespace

std::span<const hostile_deed> deeds_of_this_system() {
  return deeds;
}

// Windows sends no signals to processes.
void terminate_this_process() {
  std::raise(SIGTERM);
}
