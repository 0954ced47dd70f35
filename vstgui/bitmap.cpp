// MIT License.
#include "vstgui/bitmap.h"

#include "vstgui/draw_context.h"

namespace VSTGUI {

CBitmap::CBitmap(const CResourceDescription& description) {
  if (description.type == CResourceDescription::kStringType && description.u.name) {
    picture_ = platform::load_image(description.u.name);
  }
}

void CBitmap::draw(CDrawContext* context, const CRect& rect, const CPoint& offset, float alpha) {
  CRect clip;
  if (context->getClipRect(clip).rectOverlap(rect)) context->drawBitmap(this, rect, offset, alpha);
}

}  // namespace VSTGUI
