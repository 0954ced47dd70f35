// MIT License. A button that springs back.
#pragma once

#include "vstgui/control.h"

namespace VSTGUI {

// A click reports the maximum and then the minimum. Its bitmap has the image of the button at rest above that of the
// pressed one. Wants the focus: Return presses it.
class CKickButton : public CControl, public IMultiBitmapControl {
 public:
  // With images as high as the view.
  //   offset   of the images within the bitmap
  CKickButton(const CRect& size, IControlListener* listener, int32_t tag, CBitmap* background,
              const CPoint& offset = CPoint(0, 0));
  CKickButton(const CRect& size, IControlListener* listener, int32_t tag, CCoord heightOfOneImage, CBitmap* background,
              const CPoint& offset = CPoint(0, 0));
  CKickButton(const CKickButton& other) = default;
  CBaseObject* newCopy() const override { return new CKickButton(*this); }

  void draw(CDrawContext* context) override;
  CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseCancel() override;
  int32_t onKeyDown(VstKeyCode& keyCode) override;
  int32_t onKeyUp(VstKeyCode& keyCode) override;
  bool sizeToFit() override;

 protected:
  ~CKickButton() override = default;

  CPoint offset;
};

}  // namespace VSTGUI
