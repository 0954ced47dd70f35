// MIT License. COM.
#include <objbase.h>

#include "plugin/component_library.h"

void start_component_library() {
  CoInitializeEx(nullptr, COINIT_MULTITHREADED);
}
