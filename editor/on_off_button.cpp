// MIT License.
#include "editor/on_off_button.h"

#include "editor/two_images.h"

namespace VSTGUI {

on_off_button::on_off_button(const CRect& area, IControlListener* owner, int32_t number, const char* text,
                             CBitmap* bitmap)
    : CParamDisplay(area, bitmap, 0),
      label(text != nullptr ? text : ""),
      on_colour(getFontColor()),
      off_colour(getFontColor()) {
  setListener(owner);
  setTag(number);
  setWantsFocus(true);
}

void on_off_button::draw(CDrawContext* context) {
  CBitmap* const bitmap = getDrawBackground();
  if (bitmap != nullptr) {
    const bool is_on = getValue() == getMax();
    bitmap->draw(context, size, CPoint(0, is_on ? height_of_one_image(*bitmap) : 0), 1.0F);
    setFontColor(is_on ? on_colour : off_colour);
    drawPlatformText(context, UTF8String(label.c_str()).getPlatformString());
  }
  setDirty(false);
}

CMouseEventResult on_off_button::onMouseDown(CPoint&, const CButtonState& buttons) {
  if ((buttons & kLButton) == 0) return kMouseEventNotHandled;
  beginEdit();
  return kMouseEventHandled;
}

CMouseEventResult on_off_button::onMouseUp(CPoint& where, const CButtonState&) {
  if (!isEditing()) return kMouseEventHandled;
  if (size.pointInside(where)) {
    flip(this);
    invalid();
    valueChanged();
  }
  endEdit();
  return kMouseEventHandled;
}

CMouseEventResult on_off_button::onMouseMoved(CPoint&, const CButtonState&) {
  return kMouseEventHandled;
}

CMouseEventResult on_off_button::onMouseCancel() {
  endEdit();
  return kMouseEventHandled;
}

int32_t on_off_button::onKeyDown(VstKeyCode& key) {
  return flip_on_return(this, key);
}

bool on_off_button::sizeToFit() {
  return fit_to_one_image(this);
}

}  // namespace VSTGUI
