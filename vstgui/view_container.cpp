// MIT License.
#include "vstgui/view_container.h"

#include <algorithm>

#include "vstgui/control.h"
#include "vstgui/frame.h"

namespace VSTGUI {

namespace {

// Presses with these go to a control's listener first.
constexpr int32_t modifier_click = kShift | kAlt | kControl | kApple | kRButton;

constexpr bool is_handled(CMouseEventResult result) {
  return result != kMouseEventNotHandled && result != kMouseEventNotImplemented;
}

bool listener_takes(CView* view, const CButtonState& buttons) {
  if ((buttons & modifier_click) == 0) return false;
  auto* const control = dynamic_cast<CControl*>(view);
  return control && control->getListener() && control->getListener()->controlModifierClicked(control, buttons) != 0;
}

}  // namespace

CViewContainer::CViewContainer(const CViewContainer& other)
    : CView(other),
      background_color_(other.background_color_),
      background_offset_(other.background_offset_),
      background_style_(other.background_style_) {
  for (const auto& child : other.children_) {
    auto* const copy = dynamic_cast<CView*>(child->newCopy());
    if (!copy) continue;
    children_.emplace_back(copy);
    copy->setSubviewState(true);
  }
}

void CViewContainer::beforeDelete() {
  CViewContainer::removeAll(true);
  CView::beforeDelete();
}

bool CViewContainer::addView(CView* view) {
  return addView(view, nullptr);
}

bool CViewContainer::addView(CView* view, const CRect& area, bool mouseEnabled) {
  if (!view || view->isSubview()) return false;
  view->setMouseEnabled(mouseEnabled);
  view->setMouseableArea(area);
  return addView(view);
}

bool CViewContainer::addView(CView* view, CView* before) {
  if (!view || view->isSubview()) return false;
  children_.emplace(std::find(children_.begin(), children_.end(), before), view);
  view->setSubviewState(true);
  if (isAttached()) {
    view->attached(this);
    view->invalid();
  }
  return true;
}

bool CViewContainer::removeView(CView* view, bool withForget) {
  const auto found = std::find(children_.begin(), children_.end(), view);
  if (found == children_.end()) return false;
  const SharedPointer<CView> child = std::move(*found);
  children_.erase(found);
  if (child->isVisible()) CViewContainer::invalidRect(child->getViewSize());
  if (mouse_down_view_ == child) mouse_down_view_ = nullptr;
  if (isAttached()) child->removed(this);
  child->setSubviewState(false);
  if (withForget) child->forget();
  return true;
}

bool CViewContainer::removeAll(bool withForget) {
  while (!children_.empty()) CViewContainer::removeView(children_.front(), withForget);
  return true;
}

bool CViewContainer::isChild(CView* view, bool deep) const {
  for (const auto& child : children_) {
    if (child == view) return true;
    const auto* const container = deep ? child.cast<CViewContainer>() : nullptr;
    if (container && container->isChild(view, true)) return true;
  }
  return false;
}

CView* CViewContainer::getView(uint32_t index) const {
  return index < children_.size() ? children_[index] : nullptr;
}

CView* CViewContainer::getViewAt(const CPoint& where, const GetViewOptions& options) const {
  const CPoint local = to_children(where);
  for (auto child = children_.rbegin(); child != children_.rend(); ++child) {
    if (!(*child)->isVisible() || !(*child)->getMouseableArea().pointInside(local)) continue;
    if (options.getMouseEnabled() && !(*child)->getMouseEnabled()) continue;
    const auto* const container = options.getDeep() ? child->cast<CViewContainer>() : nullptr;
    if (CView* const inner = container ? container->getViewAt(local, options) : nullptr) return inner;
    return *child;
  }
  return nullptr;
}

void CViewContainer::setBackgroundColor(const CColor& color) {
  background_color_ = color;
  setDirty();
}

void CViewContainer::setBackgroundOffset(const CPoint& offset) {
  background_offset_ = offset;
  setDirty();
}

void CViewContainer::setBackgroundColorDrawStyle(CDrawStyle style) {
  background_style_ = style;
  setDirty();
}

void CViewContainer::drawBackgroundRect(CDrawContext* context, const CRect& /*updateRect*/) {
  const CRect area(CPoint(0, 0), size.getSize());
  if (CBitmap* const background = getDrawBackground()) {
    background->draw(context, area, background_offset_);
  } else if (!getTransparency()) {
    context->setDrawMode(kAliasing);
    context->setLineWidth(1);
    context->setFillColor(background_color_);
    context->setFrameColor(background_color_);
    context->drawRect(area, background_style_);
  }
}

void CViewContainer::draw(CDrawContext* context) {
  CViewContainer::drawRect(context, size);
}

void CViewContainer::drawRect(CDrawContext* context, const CRect& updateRect) {
  const CPoint corner = size.getTopLeft();
  const CRect area = CRect(updateRect).bound(size).offsetInverse(corner);
  CDrawContext::Transform to_local(*context, CGraphicsTransform().translate(corner));
  context->saveGlobalState();
  context->setClipRect(area);
  drawBackgroundRect(context, area);
  context->restoreGlobalState();
  for (const auto& child : children_) {
    const CRect part = CRect(child->getViewSize()).bound(area);
    if (!child->isVisible() || part.isEmpty() || !child->checkUpdate(area)) continue;
    context->saveGlobalState();
    context->setClipRect(part);
    context->setGlobalAlpha(context->getGlobalAlpha() * child->getAlphaValue());
    child->drawRect(context, part);
    context->restoreGlobalState();
  }
  setDirty(false);
}

bool CViewContainer::isDirty() const {
  return CView::isDirty() || std::any_of(children_.begin(), children_.end(),
                                         [](const auto& child) { return child->isVisible() && child->isDirty(); });
}

bool CViewContainer::invalidateDirtyViews() {
  if (!isVisible()) return false;
  bool any = CView::isDirty();
  if (any) invalid();
  for (const auto& child : children_) {
    if (auto* const container = child.cast<CViewContainer>()) {
      any |= container->invalidateDirtyViews();
    } else if (child->isVisible() && child->isDirty()) {
      child->invalid();
      any = true;
    }
  }
  return any;
}

void CViewContainer::invalidRect(const CRect& rect) {
  CView::invalidRect(CRect(rect).offset(size.getTopLeft()).bound(size));
}

void CViewContainer::invalid() {
  setDirty(false);
  CView::invalidRect(size);
}

CViewContainer::child_list CViewContainer::children_below(const CPoint& where, const CButtonState& buttons) const {
  child_list below;
  for (auto child = children_.rbegin(); child != children_.rend(); ++child) {
    if (takesEvents(*child) && (*child)->hitTest(where, buttons)) below.push_back(*child);
  }
  return below;
}

CMouseEventResult CViewContainer::onMouseDown(CPoint& where, const CButtonState& buttons) {
  const CPoint local = to_children(where);
  for (const auto& child : children_below(local, buttons)) {
    if (listener_takes(child, buttons)) return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
    if (!isChild(child)) continue;
    if (child->wantsFocus() && getFrame()) getFrame()->setFocusView(child);
    CPoint position(local);
    const CMouseEventResult result = child->onMouseDown(position, buttons);
    if (is_handled(result)) {
      if (result != kMouseEventHandled) return result;
      // The press may have removed the view, which then has no use for a capture.
      if (!isChild(child)) return kMouseDownEventHandledButDontNeedMovedOrUpEvents;
      mouse_down_view_ = child;
      return result;
    }
    if (!child->getTransparency()) return result;
  }
  return kMouseEventNotHandled;
}

CMouseEventResult CViewContainer::onMouseUp(CPoint& where, const CButtonState& buttons) {
  const SharedPointer<CView> view = mouse_down_view_;
  if (!view) return kMouseEventNotHandled;
  CPoint position = to_children(where);
  view->onMouseUp(position, buttons);
  if (mouse_down_view_ == view) mouse_down_view_ = nullptr;
  return kMouseEventHandled;
}

CMouseEventResult CViewContainer::onMouseMoved(CPoint& where, const CButtonState& buttons) {
  const CPoint local = to_children(where);
  if (const SharedPointer<CView> view = mouse_down_view_) {
    CPoint position(local);
    const CMouseEventResult result = view->onMouseMoved(position, buttons);
    if (result != kMouseEventHandled && result != kMouseEventNotImplemented) mouse_down_view_ = nullptr;
    return result;
  }
  for (const auto& child : children_below(local, buttons)) {
    if (!isChild(child)) continue;
    CPoint position(local);
    const CMouseEventResult result = child->onMouseMoved(position, buttons);
    if (is_handled(result) || !child->getTransparency()) return result;
  }
  return kMouseEventNotHandled;
}

CMouseEventResult CViewContainer::onMouseCancel() {
  const SharedPointer<CView> view = std::exchange(mouse_down_view_, {});
  if (view) view->onMouseCancel();
  return kMouseEventHandled;
}

bool CViewContainer::onWheel(const CPoint& where, const float& distance, const CButtonState& buttons) {
  return onWheel(where, kMouseWheelAxisY, distance, buttons);
}

bool CViewContainer::onWheel(const CPoint& where, const CMouseWheelAxis& axis, const float& distance,
                             const CButtonState& buttons) {
  const CPoint local = to_children(where);
  for (const auto& child : children_below(local, buttons)) {
    if (isChild(child) && child->onWheel(local, axis, distance, buttons)) return true;
    if (!child->getTransparency()) return false;
  }
  return false;
}

void CViewContainer::collectFocusViews(std::vector<CView*>& views) const {
  for (const auto& child : children_) {
    if (!takesEvents(child)) continue;
    if (child->wantsFocus()) views.push_back(child);
    if (const auto* const container = child.cast<CViewContainer>()) container->collectFocusViews(views);
  }
}

bool CViewContainer::advanceNextFocusView(CView* oldFocus, bool reverse) {
  if (!getFrame()) return false;
  std::vector<CView*> views;
  collectFocusViews(views);
  if (reverse) std::reverse(views.begin(), views.end());
  auto next = std::find(views.begin(), views.end(), oldFocus);
  next = next == views.end() ? views.begin() : next + 1;
  CView* const view = next == views.end() ? nullptr : *next;
  getFrame()->setFocusView(view);
  return view != nullptr;
}

void CViewContainer::collectViewsBelow(CPoint where, std::vector<SharedPointer<CView>>& views) const {
  where = to_children(where);
  const child_list below = children_below(where, 0);
  if (below.empty()) return;
  views.push_back(below.front());
  if (const auto* const container = below.front().cast<CViewContainer>()) container->collectViewsBelow(where, views);
}

bool CViewContainer::attached(CView* parent) {
  if (!CView::attached(parent)) return false;
  for (const auto& child : child_list(children_)) child->attached(this);
  return true;
}

bool CViewContainer::removed(CView* parent) {
  if (!isAttached()) return false;
  mouse_down_view_ = nullptr;
  for (const auto& child : child_list(children_)) child->removed(this);
  return CView::removed(parent);
}

CPoint& CViewContainer::frameToLocal(CPoint& point) const {
  return CView::frameToLocal(point.offsetInverse(size.getTopLeft()));
}

CPoint& CViewContainer::localToFrame(CPoint& point) const {
  return CView::localToFrame(point.offset(size.getTopLeft()));
}

}  // namespace VSTGUI
