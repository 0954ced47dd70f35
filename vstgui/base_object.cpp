// MIT License.
#include "vstgui/base_object.h"

namespace VSTGUI {

void CBaseObject::forget() {
  if (--references_ != 0) return;
  // What runs from here on may remember and forget the object once more; it must not be deleted twice.
  references_ = INT32_MIN / 2;
  beforeDelete();
  delete this;
}

}  // namespace VSTGUI
