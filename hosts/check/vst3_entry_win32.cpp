// MIT License.
#include "hosts/check/vst3_entry.h"

bool enter_vst3_module(const shared_library& library) {
  const auto enter = library.function<bool (*)()>("InitDll");
  return enter == nullptr || enter();
}

void leave_vst3_module(const shared_library& library) {
  if (const auto leave = library.function<bool (*)()>("ExitDll")) leave();
}
