// MIT License.
#include "vstgui/view.h"

#include "vstgui/frame.h"

namespace VSTGUI {

CView::CView(const CRect& rect) : size(rect), mouseableArea(rect), viewFlags(visible_flag | mouse_enabled_flag) {}

CView::CView(const CView& other)
    : CBaseObject(other),
      size(other.size),
      mouseableArea(other.mouseableArea),
      viewFlags(other.viewFlags & ~(attached_flag | subview_flag)),
      alphaValue(other.alphaValue),
      background_(other.background_),
      disabled_background_(other.disabled_background_) {}

void CView::draw(CDrawContext* context) {
  if (CBitmap* const background = getDrawBackground()) background->draw(context, size);
  setDirty(false);
}

void CView::invalidRect(const CRect& rect) {
  if (isAttached() && isVisible() && pParentView) pParentView->invalidRect(rect);
}

void CView::invalid() {
  setDirty(false);
  invalidRect(size);
}

void CView::setVisible(bool state) {
  if (has_flag(visible_flag) == state) return;
  invalidRect(size);  // before and after: hidden views invalidate nothing
  set_flag(visible_flag, state);
  invalidRect(size);
}

void CView::setAlphaValue(float alpha) {
  if (alphaValue == alpha) return;
  invalidRect(size);
  alphaValue = alpha;
  invalidRect(size);
}

CMouseEventResult CView::onMouseDown(CPoint& /*where*/, const CButtonState& /*buttons*/) {
  return kMouseEventNotImplemented;
}

CMouseEventResult CView::onMouseUp(CPoint& /*where*/, const CButtonState& /*buttons*/) {
  return kMouseEventNotImplemented;
}

CMouseEventResult CView::onMouseMoved(CPoint& /*where*/, const CButtonState& /*buttons*/) {
  return kMouseEventNotImplemented;
}

CMouseEventResult CView::onMouseEntered(CPoint& /*where*/, const CButtonState& /*buttons*/) {
  return kMouseEventNotImplemented;
}

CMouseEventResult CView::onMouseExited(CPoint& /*where*/, const CButtonState& /*buttons*/) {
  return kMouseEventNotImplemented;
}

bool CView::hitTest(const CPoint& where, const CButtonState& /*buttons*/) {
  return mouseableArea.pointInside(where);
}

bool CView::onWheel(const CPoint& /*where*/, const float& /*distance*/, const CButtonState& /*buttons*/) {
  return false;
}

bool CView::onWheel(const CPoint& /*where*/, const CMouseWheelAxis& /*axis*/, const float& /*distance*/,
                    const CButtonState& /*buttons*/) {
  return false;
}

void CView::setMouseEnabled(bool state) {
  if (getMouseEnabled() == state) return;
  set_flag(mouse_enabled_flag, state);
  if (disabled_background_) setDirty();
}

void CView::setViewSize(const CRect& rect, bool redraw) {
  if (size == rect) return;
  if (redraw) invalidRect(size);
  size = rect;
  if (redraw) setDirty();
}

CRect CView::getVisibleViewSize() const {
  CRect visible(size);
  if (!pParentView) return visible;
  return visible.bound(pParentView->getVisibleViewSize().offsetInverse(pParentView->size.getTopLeft()));
}

void CView::setBackground(CBitmap* background) {
  background_ = background;
  setDirty();
}

void CView::setDisabledBackground(CBitmap* background) {
  disabled_background_ = background;
  setDirty();
}

CBitmap* CView::getDrawBackground() const {
  return disabled_background_ && !getMouseEnabled() ? disabled_background_ : background_;
}

bool CView::attached(CView* parent) {
  if (isAttached()) return false;
  pParentView = parent;
  if (parent) pParentFrame = parent->getFrame();
  set_flag(attached_flag, true);
  return true;
}

bool CView::removed(CView* /*parent*/) {
  if (!isAttached()) return false;
  if (pParentView && pParentFrame) pParentFrame->onViewRemoved(this);
  if (pParentView) pParentFrame = nullptr;
  pParentView = nullptr;
  set_flag(attached_flag, false);
  return true;
}

VSTGUIEditorInterface* CView::getEditor() const {
  return pParentFrame ? pParentFrame->getEditor() : nullptr;
}

CPoint& CView::frameToLocal(CPoint& point) const {
  return pParentView ? pParentView->frameToLocal(point) : point;
}

CPoint& CView::localToFrame(CPoint& point) const {
  return pParentView ? pParentView->localToFrame(point) : point;
}

}  // namespace VSTGUI
