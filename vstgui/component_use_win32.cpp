// MIT License. OLE.
#include <ole2.h>

#include "vstgui/component_use.h"

namespace VSTGUI {

bool start_components() {
  return SUCCEEDED(OleInitialize(nullptr));
}

void end_components() {
  OleUninitialize();
}

}  // namespace VSTGUI
