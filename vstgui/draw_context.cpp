// MIT License.
#include "vstgui/draw_context.h"

namespace VSTGUI {

CDrawContext::CDrawContext(platform::painter& target, const CRect& area) : painter_(target), area_(area) {
  resetClipRect();
}

// A colour under the global alpha.
CColor CDrawContext::seen(const CColor& color) const {
  CColor result = color;
  result.alpha =
      static_cast<uint8_t>(std::lround(static_cast<float>(color.alpha) * std::clamp(state_.alpha, 0.F, 1.F)));
  return result;
}

void CDrawContext::drawLine(const CPoint& start, const CPoint& end) {
  painter_.draw_line(on_surface(start), on_surface(end), seen(state_.line), state_.line_width);
}

void CDrawContext::drawRect(const CRect& rect, CDrawStyle style) {
  if (style != kDrawStroked) painter_.fill_rect(on_surface(rect), seen(state_.fill));
  if (style != kDrawFilled) painter_.stroke_rect(on_surface(rect), seen(state_.line), state_.line_width);
}

void CDrawContext::drawEllipse(const CRect& rect, CDrawStyle style) {
  if (style != kDrawStroked) painter_.fill_ellipse(on_surface(rect), seen(state_.fill));
  if (style != kDrawFilled) painter_.stroke_ellipse(on_surface(rect), seen(state_.line), state_.line_width);
}

void CDrawContext::drawBitmap(CBitmap* bitmap, const CRect& dest, const CPoint& offset, float alpha) {
  const platform::image* const picture = bitmap ? bitmap->getPlatformBitmap() : nullptr;
  if (picture) painter_.draw_image(*picture, on_surface(dest), offset, alpha * state_.alpha);
}

void CDrawContext::draw_text(const std::string& text, const CPoint& point, bool antialias) {
  const platform::font* const face = state_.font ? state_.font->getPlatformFont() : nullptr;
  if (face) painter_.draw_text(text, on_surface(point), *face, seen(state_.text), antialias);
}

void CDrawContext::draw_text(const std::string& text, const CRect& rect, CHoriTxtAlign align, bool antialias) {
  const platform::font* const face = state_.font ? state_.font->getPlatformFont() : nullptr;
  if (!face) return;
  const CCoord capitals = face->cap_height();
  CPoint point(rect.left, rect.bottom - (rect.getHeight() - capitals) / 2);
  if (capitals <= 0) point.y = rect.bottom - (rect.getHeight() - state_.font->getSize()) / 2 - 1;
  if (align == kRightText) point.x = rect.right - face->width(text);
  if (align == kCenterText) point.x = rect.getCenter().x - face->width(text) / 2;
  draw_text(text, point, antialias);
}

CCoord CDrawContext::width_of(const std::string& text) const {
  const platform::font* const face = state_.font ? state_.font->getPlatformFont() : nullptr;
  return face ? face->width(text) : -1;
}

void CDrawContext::drawString(UTF8StringPtr text, const CRect& rect, CHoriTxtAlign align, bool antialias) {
  if (text) draw_text(text, rect, align, antialias);
}

void CDrawContext::drawString(IPlatformString* text, const CRect& rect, CHoriTxtAlign align, bool antialias) {
  if (text) draw_text(text->utf8(), rect, align, antialias);
}

void CDrawContext::drawString(UTF8StringPtr text, const CPoint& point, bool antialias) {
  if (text) draw_text(text, point, antialias);
}

void CDrawContext::drawString(IPlatformString* text, const CPoint& point, bool antialias) {
  if (text) draw_text(text->utf8(), point, antialias);
}

CCoord CDrawContext::getStringWidth(UTF8StringPtr text) {
  return width_of(text ? text : "");
}

CCoord CDrawContext::getStringWidth(IPlatformString* text) {
  return width_of(text ? text->utf8() : "");
}

void CDrawContext::setFont(CFontRef font, const CCoord& size, const int32_t& style) {
  state_.font = font;
  if (!font) return;
  const bool resized = size > 0 && size != font->getSize();
  const bool restyled = style != -1 && style != font->getStyle();
  if (!resized && !restyled) return;
  state_.font = owned(new CFontDesc(*font));
  if (resized) state_.font->setSize(size);
  if (restyled) state_.font->setStyle(style);
}

void CDrawContext::setClipRect(const CRect& clip) {
  state_.clip = on_surface(clip).normalize().bound(area_);
  painter_.set_clip(state_.clip);
}

CRect& CDrawContext::getClipRect(CRect& clip) const {
  clip = state_.clip;
  return clip.offsetInverse(origin_);
}

void CDrawContext::resetClipRect() {
  state_.clip = area_;
  painter_.set_clip(state_.clip);
}

void CDrawContext::saveGlobalState() {
  saved_.push_back(state_);
}

void CDrawContext::restoreGlobalState() {
  if (saved_.empty()) return;
  state_ = std::move(saved_.back());
  saved_.pop_back();
  painter_.set_clip(state_.clip);
}

CDrawContext::Transform::Transform(CDrawContext& context, const CGraphicsTransform& transform)
    : context_(context), distance_(transform.distance()) {
  context_.origin_ += distance_;
}

CDrawContext::Transform::~Transform() {
  context_.origin_ -= distance_;
}

}  // namespace VSTGUI
