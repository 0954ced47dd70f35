// MIT License. OLE.
#include <ole2.h>

#include "vstgui/component_use.h"

namespace VSTGUI {

component_use::component_use() : started_(SUCCEEDED(OleInitialize(nullptr))) {}

component_use::~component_use() {
  if (started_) OleUninitialize();
}

}  // namespace VSTGUI
