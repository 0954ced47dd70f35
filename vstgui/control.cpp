// MIT License.
#include "vstgui/control.h"

#include <algorithm>

#include "vstgui/frame.h"

namespace VSTGUI {

CControl::CControl(const CRect& rect, IControlListener* its_listener, int32_t its_tag, CBitmap* background)
    : CView(rect), listener(its_listener), tag(its_tag) {
  setBackground(background);
}

CControl::CControl(const CControl& other)
    : CView(other),
      listener(other.listener),
      tag(other.tag),
      oldValue(other.oldValue),
      defaultValue(other.defaultValue),
      value(other.value),
      vmin(other.vmin),
      vmax(other.vmax),
      wheelInc(other.wheelInc) {}

void CControl::setValue(float val) {
  value = val;
  bounceValue();
}

void CControl::setValueNormalized(float val) {
  setValue(getMin() + std::clamp(val, 0.F, 1.F) * getRange());
}

float CControl::getValueNormalized() const {
  const float range = getRange();
  return range == 0.F ? 0.F : (value - getMin()) / range;
}

void CControl::setMin(float val) {
  vmin = val;
  bounceValue();
}

void CControl::setMax(float val) {
  vmax = val;
  bounceValue();
}

void CControl::bounceValue() {
  if (value > vmax) value = vmax;
  if (value < vmin) value = vmin;
}

bool CControl::checkDefaultValue(CButtonState button) {
  if (!button.isLeftButton() || button.getModifierState() != kControl) return false;
  beginEdit();
  setValue(getDefaultValue());
  if (isDirty()) valueChanged();
  endEdit();
  return true;
}

// The listeners may remove the control, or each other.
void CControl::report(void (IControlListener::*event)(CControl*)) {
  CBaseObjectGuard guard(this);
  if (listener) (listener->*event)(this);
  for (IControlListener* const other : std::vector<IControlListener*>(sub_listeners_)) {
    if (std::find(sub_listeners_.begin(), sub_listeners_.end(), other) != sub_listeners_.end()) (other->*event)(this);
  }
}

void CControl::valueChanged() {
  report(&IControlListener::valueChanged);
}

void CControl::beginEdit() {
  if (++editing != 1) return;
  report(&IControlListener::controlBeginEdit);
  if (getFrame()) getFrame()->beginEdit(tag);
}

void CControl::endEdit() {
  if (editing == 0 || --editing != 0) return;
  if (getFrame()) getFrame()->endEdit(tag);
  report(&IControlListener::controlEndEdit);
}

void CControl::setTag(int32_t val) {
  if (tag == val) return;
  report(&IControlListener::controlTagWillChange);
  tag = val;
  report(&IControlListener::controlTagDidChange);
}

void CControl::registerControlListener(IControlListener* subListener) {
  if (std::find(sub_listeners_.begin(), sub_listeners_.end(), subListener) == sub_listeners_.end()) {
    sub_listeners_.push_back(subListener);
  }
}

void CControl::unregisterControlListener(IControlListener* subListener) {
  std::erase(sub_listeners_, subListener);
}

void CControl::setDirty(bool val) {
  CView::setDirty(val);
  oldValue = value;
  if (val) oldValue = value == -1.F ? 0.F : -1.F;
}

void IMultiBitmapControl::autoComputeHeightOfOneImage() {
  if (const auto* const view = dynamic_cast<CView*>(this)) heightOfOneImage = view->getHeight();
}

}  // namespace VSTGUI
