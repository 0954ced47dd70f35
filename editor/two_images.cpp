// MIT License.
#include "editor/two_images.h"

namespace VSTGUI {

bool is_plain_return(const VstKeyCode& key) {
  return key.virt == VKEY_RETURN && key.modifier == 0;
}

void flip(CControl* control) {
  const bool is_on = control->getValue() == control->getMax();
  control->setValue(is_on ? control->getMin() : control->getMax());
}

int32_t flip_on_return(CControl* control, const VstKeyCode& key) {
  if (!is_plain_return(key)) return -1;
  flip(control);
  control->invalid();
  control->beginEdit();
  control->valueChanged();
  control->endEdit();
  return 1;
}

bool fit_to_one_image(CView* view) {
  const CBitmap* const bitmap = view->getDrawBackground();
  if (bitmap == nullptr) return false;
  CRect size = view->getViewSize();
  size.setWidth(bitmap->getWidth());
  size.setHeight(height_of_one_image(*bitmap));
  view->setViewSize(size);
  view->setMouseableArea(size);
  return true;
}

}  // namespace VSTGUI
