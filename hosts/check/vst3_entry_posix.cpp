// MIT License.
#include "hosts/check/vst3_entry.h"

bool enter_vst3_module(const shared_library& library) {
  const auto enter = library.function<bool (*)(void*)>("ModuleEntry");
  return enter != nullptr && enter(library.handle());  // not optional on Linux
}

void leave_vst3_module(const shared_library& library) {
  if (const auto leave = library.function<bool (*)()>("ModuleExit")) leave();
}
