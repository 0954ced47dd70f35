// MIT License.
#include "vstgui/kick_button.h"

namespace VSTGUI {

CKickButton::CKickButton(const CRect& rect, IControlListener* its_listener, int32_t its_tag, CBitmap* background,
                         const CPoint& images)
    : CKickButton(rect, its_listener, its_tag, rect.getHeight(), background, images) {}

CKickButton::CKickButton(const CRect& rect, IControlListener* its_listener, int32_t its_tag, CCoord height,
                         CBitmap* background, const CPoint& images)
    : CControl(rect, its_listener, its_tag, background), offset(images) {
  heightOfOneImage = height;
  setWantsFocus(true);
}

void CKickButton::draw(CDrawContext* context) {
  if (CBitmap* const background = getDrawBackground()) {
    background->draw(context, size, offset + CPoint(0, value == getMax() ? heightOfOneImage : 0));
  }
  setDirty(false);
}

CMouseEventResult CKickButton::onMouseDown(CPoint& where, const CButtonState& buttons) {
  if ((buttons & kLButton) == 0) return kMouseEventNotHandled;
  beginEdit();
  return onMouseMoved(where, buttons);
}

CMouseEventResult CKickButton::onMouseMoved(CPoint& where, const CButtonState& /*buttons*/) {
  if (!isEditing()) return kMouseEventNotHandled;
  const bool inside = where.x >= size.left && where.x <= size.right && where.y >= size.top && where.y <= size.bottom;
  value = inside ? getMax() : getMin();
  if (isDirty()) invalid();
  return kMouseEventHandled;
}

CMouseEventResult CKickButton::onMouseUp(CPoint& /*where*/, const CButtonState& /*buttons*/) {
  if (value > getMin()) valueChanged();
  value = getMin();
  valueChanged();
  if (isDirty()) invalid();
  endEdit();
  return kMouseEventHandled;
}

CMouseEventResult CKickButton::onMouseCancel() {
  value = getMin();
  if (isDirty()) invalid();
  endEdit();
  return kMouseEventHandled;
}

int32_t CKickButton::onKeyDown(VstKeyCode& keyCode) {
  if (keyCode.virt != VKEY_RETURN || keyCode.modifier != 0) return -1;
  if (value != getMax()) {  // else the key repeats
    beginEdit();
    value = getMax();
    invalid();
    valueChanged();
  }
  return 1;
}

int32_t CKickButton::onKeyUp(VstKeyCode& keyCode) {
  // A modifier that was pressed after the key must not leave the button down.
  if (keyCode.virt != VKEY_RETURN || (keyCode.modifier != 0 && !isEditing())) return -1;
  value = getMin();
  invalid();
  valueChanged();
  endEdit();
  return 1;
}

bool CKickButton::sizeToFit() {
  const CBitmap* const background = getDrawBackground();
  if (!background) return false;
  const CRect fit(size.getTopLeft(), CPoint(background->getWidth(), heightOfOneImage));
  setViewSize(fit);
  setMouseableArea(fit);
  return true;
}

}  // namespace VSTGUI
