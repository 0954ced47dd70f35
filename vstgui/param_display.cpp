// MIT License.
#include "vstgui/param_display.h"

#include <cstdio>

namespace VSTGUI {

CParamDisplay::CParamDisplay(const CRect& rect, CBitmap* background, int32_t its_style)
    : CControl(rect, nullptr, -1, background), style(its_style) {}

void CParamDisplay::setFont(CFontRef font) {
  if (fontID == font) return;
  fontID = font;
  drawStyleChanged();
}

void CParamDisplay::setStyle(int32_t val) {
  change(style, val);
}

void CParamDisplay::setValueToStringFunction(const ValueToStringFunction& function) {
  value_to_string_ = function;
  setDirty();
}

void CParamDisplay::draw(CDrawContext* context) {
  if ((style & kNoDrawStyle) == 0) {
    char text[256] = {};
    if (!value_to_string_ || !value_to_string_(value, text, this)) {
      std::snprintf(text, sizeof text, "%.*f", valuePrecision, static_cast<double>(value));
    }
    text[sizeof text - 1] = 0;
    drawBack(context);
    drawPlatformText(context, UTF8String(text).getPlatformString());
  }
  setDirty(false);
}

void CParamDisplay::drawBack(CDrawContext* context, CBitmap* newBack) {
  CBitmap* const background = newBack ? newBack : getDrawBackground();
  if (background) {
    background->draw(context, size, backOffset);
  } else if (!getTransparency()) {
    context->setDrawMode(kAliasing);
    context->setLineWidth(frameWidth);
    context->setFillColor(backColor);
    context->setFrameColor(frameColor);
    context->drawRect(size, (style & kNoFrame) != 0 ? kDrawFilled : kDrawFilledAndStroked);
  }
}

void CParamDisplay::drawPlatformText(CDrawContext* context, IPlatformString* string) {
  drawPlatformText(context, string, size);
}

void CParamDisplay::drawPlatformText(CDrawContext* context, IPlatformString* string, const CRect& rect) {
  if ((style & kNoTextStyle) != 0) return;
  context->saveGlobalState();
  const CRect area = CRect(rect).inset(textInset);
  CRect clip;
  context->getClipRect(clip);
  context->setClipRect(CRect(area).bound(clip));
  context->setDrawMode(kAntiAliasing);
  context->setFont(fontID);
  if ((style & kShadowText) != 0) {
    context->setFontColor(shadowColor);
    context->drawString(string, CRect(area).offset(1, 1), horiTxtAlign, bAntialias);
  }
  context->setFontColor(fontColor);
  context->drawString(string, area, horiTxtAlign, bAntialias);
  context->restoreGlobalState();
}

}  // namespace VSTGUI
