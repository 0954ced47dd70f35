// MIT License. A switch with a label whose colour shows its state.
#pragma once

#include <string>

#include "vstgui/vstgui.h"

namespace VSTGUI {

// On when its value is exactly its maximum. The bitmap has the image for off above the one for on; without a bitmap
// nothing is drawn, not even the label.
class on_off_button : public CParamDisplay {
 public:
  //   text   the label, as UTF-8; null for none
  on_off_button(const CRect& area, IControlListener* owner, int32_t number, const char* text, CBitmap* bitmap);
  on_off_button(const on_off_button& other) = default;
  CBaseObject* newCopy() const override { return new on_off_button(*this); }

  void draw(CDrawContext* context) override;
  CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseCancel() override;
  int32_t onKeyDown(VstKeyCode& key) override;
  bool sizeToFit() override;

  // A number of its own, apart from the display's style.
  void setStyle(int32_t new_style) override { style = new_style; }
  int32_t getStyle() const { return style; }

  // Of the label. They show at the next drawing.
  virtual void setOnColour(const CColor& colour) { on_colour = colour; }
  virtual void setOffColour(const CColor& colour) { off_colour = colour; }

 protected:
  ~on_off_button() override = default;

 private:
  int32_t style = 0;
  std::string label;
  SharedPointer<CBaseObject> companion;  // room for an object that ends with the button; unused
  CColor on_colour;
  CColor off_colour;
};

}  // namespace VSTGUI
