// MIT License. There is no OLE.
#include "vstgui/component_use.h"

namespace VSTGUI {

bool start_components() {
  return false;
}

void end_components() {}

}  // namespace VSTGUI
