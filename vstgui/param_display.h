// MIT License. Displays of a value as text.
#pragma once

#include <functional>

#include "vstgui/control.h"

namespace VSTGUI {

// The base of controls with text. Starts with centred white text in kNormalFont on a black box, without a tag or a
// listener. Setting any of its properties makes it dirty.
class CParamDisplay : public CControl {
 public:
  //   style   a mask of CControlEnum
  explicit CParamDisplay(const CRect& size, CBitmap* background = nullptr, int32_t style = 0);
  CParamDisplay(const CParamDisplay& other) = default;
  CBaseObject* newCopy() const override { return new CParamDisplay(*this); }

  void draw(CDrawContext* context) override;

  virtual void setFont(CFontRef font);
  CFontRef getFont() const { return fontID; }
  virtual void setFontColor(CColor color) { change(fontColor, color); }
  CColor getFontColor() const { return fontColor; }
  virtual void setBackColor(CColor color) { change(backColor, color); }
  CColor getBackColor() const { return backColor; }
  virtual void setFrameColor(CColor color) { change(frameColor, color); }
  CColor getFrameColor() const { return frameColor; }
  virtual void setShadowColor(CColor color) { change(shadowColor, color); }
  CColor getShadowColor() const { return shadowColor; }

  virtual void setAntialias(bool state) { change(bAntialias, state); }
  bool getAntialias() const { return bAntialias; }
  virtual void setHoriAlign(CHoriTxtAlign align) { change(horiTxtAlign, align); }
  CHoriTxtAlign getHoriAlign() const { return horiTxtAlign; }
  // Between the view's edges and the area to which the text is limited.
  virtual void setTextInset(const CPoint& inset) { change(textInset, inset); }
  CPoint getTextInset() const { return textInset; }
  virtual void setFrameWidth(const CCoord& width) { change(frameWidth, width); }
  CCoord getFrameWidth() const { return frameWidth; }
  virtual void setStyle(int32_t val);
  int32_t getStyle() const { return style; }
  // Digits behind the point.
  virtual void setPrecision(uint8_t precision) { change(valuePrecision, precision); }
  uint8_t getPrecision() const { return valuePrecision; }

  // Makes the text of a value; false leaves it to the precision.
  using ValueToStringFunction = std::function<bool(float value, char utf8String[256], CParamDisplay* display)>;
  void setValueToStringFunction(const ValueToStringFunction& function);

 protected:
  ~CParamDisplay() override = default;

  // The bitmap given, or else the view's, or else the box.
  virtual void drawBack(CDrawContext* context, CBitmap* newBack = nullptr);
  // Inside the view, or the rectangle given. A text that is too long is cut off at the inset.
  virtual void drawPlatformText(CDrawContext* context, IPlatformString* string);
  virtual void drawPlatformText(CDrawContext* context, IPlatformString* string, const CRect& rect);
  virtual void drawStyleChanged() { setDirty(); }

  CHoriTxtAlign horiTxtAlign = kCenterText;
  int32_t style;
  uint8_t valuePrecision = 2;
  SharedPointer<CFontDesc> fontID = kNormalFont;
  CColor fontColor = kWhiteCColor;
  CColor backColor = kBlackCColor;
  CColor frameColor = kBlackCColor;
  CColor shadowColor = kRedCColor;
  CPoint textInset;
  CCoord frameWidth = 1;
  bool bAntialias = true;

 private:
  template <typename T>
  void change(T& property, const T& new_value) {
    if (property == new_value) return;
    property = new_value;
    drawStyleChanged();
  }

  ValueToStringFunction value_to_string_;
};

}  // namespace VSTGUI
