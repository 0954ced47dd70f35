// MIT License.
#include "vstgui/frame.h"

#include <algorithm>

namespace VSTGUI {

namespace {

bool contains(const CRect& outer, const CRect& inner) {
  return CRect(outer).unite(inner) == outer;
}

bool is_among(const std::vector<SharedPointer<CView>>& views, const CView* view) {
  return std::find(views.begin(), views.end(), view) != views.end();
}

CPoint in_parent(const CView* view, CPoint where) {
  return view->getParentView() ? view->getParentView()->frameToLocal(where) : where;
}

}  // namespace

CFrame::platform_call::platform_call(CFrame* frame) : frame_(frame) {
  frame->remember();
  ++frame->platform_calls_;
}

CFrame::platform_call::~platform_call() {
  frame_->flush_invalid();
  if (--frame_->platform_calls_ == 0 && frame_->down_) frame_->window_.reset();
  frame_->forget();
}

CFrame::CFrame(const CRect& rect, VSTGUIEditorInterface* its_editor)
    : CViewContainer(CRect(CPoint(0, 0), rect.getSize())), editor_(its_editor) {
  pParentFrame = this;
}

CFrame::CFrame(const CFrame& other)
    : CViewContainer(other),
      editor_(other.editor_),
      zoom_(other.zoom_),
      focus_drawing_(other.focus_drawing_),
      focus_color_(other.focus_color_),
      focus_width_(other.focus_width_) {
  pParentFrame = this;
}

CFrame::~CFrame() {
  window_.reset();
}

bool CFrame::open(void* systemWindow, PlatformType /*systemWindowType*/) {
  if (!systemWindow || window_ || down_) return false;
  window_ = platform::open_window(systemWindow, size.getSize(), zoom_, *this);
  if (!window_) return false;
  CViewContainer::attached(nullptr);
  invalid();
  return true;
}

void CFrame::close() {
  take_down();
  forget();
}

void CFrame::forget() {
  // The calls that are under way hold a reference each: with the last one besides theirs the frame ends for its owner.
  if (platform_calls_ > 0 && getNbReference() == platform_calls_ + 1) take_down();
  CViewContainer::forget();
}

void CFrame::beforeDelete() {
  take_down();
  CViewContainer::beforeDelete();
}

void CFrame::take_down() {
  if (down_) return;
  down_ = true;
  hovered_.clear();
  setFocusView(nullptr);
  next_focus_view_ = nullptr;
  setModalView(nullptr);
  removeAll(true);
  CViewContainer::removed(nullptr);
  invalid_.clear();
  if (platform_calls_ == 0) window_.reset();
}

void CFrame::idle() {
  if (window_) invalidateDirtyViews();
}

void CFrame::pollPlatformEvents() {
  if (!window_) return;
  platform_call call(this);
  window_->poll_events();
}

bool CFrame::setSize(CCoord width, CCoord height) {
  const CRect resized(0, 0, width, height);
  if (resized == size || (editor_ && !editor_->beforeSizeChange(resized, size))) return false;
  CViewContainer::setViewSize(resized, false);
  setMouseableArea(resized);
  if (window_) window_->resize(resized.getSize(), zoom_);
  invalid();
  return true;
}

void CFrame::setViewSize(const CRect& rect, bool /*redraw*/) {
  setSize(rect.getWidth(), rect.getHeight());
}

bool CFrame::getSize(CRect* rect) const {
  return rect && getSize(*rect);
}

bool CFrame::getSize(CRect& rect) const {
  rect = size;
  return true;
}

bool CFrame::getPosition(CCoord& x, CCoord& y) const {
  if (!window_) return false;
  const CPoint position = window_->position_on_screen();
  x = position.x;
  y = position.y;
  return true;
}

bool CFrame::setZoom(double zoom) {
  if (!(zoom > 0)) return false;
  zoom_ = zoom;
  if (window_) window_->resize(size.getSize(), zoom_);
  invalid();
  return true;
}

void CFrame::beginEdit(int32_t index) {
  if (editor_) editor_->beginEdit(index);
}

void CFrame::endEdit(int32_t index) {
  if (editor_) editor_->endEdit(index);
}

bool CFrame::getCurrentMouseLocation(CPoint& where) const {
  if (window_) where = window_->mouse_position();
  return window_ != nullptr;
}

CButtonState CFrame::getCurrentMouseButtons() const {
  return window_ ? window_->mouse_buttons() : CButtonState();
}

void CFrame::setCursor(CCursorType type) {
  if (window_) window_->set_cursor(type);
}

int32_t CFrame::getKnobMode() const {
  const int32_t mode = editor_ ? editor_->getKnobMode() : -1;
  return mode == -1 ? int32_t{kCircularMode} : mode;
}

// Focus

void CFrame::setFocusView(CView* view) {
  if (view && view->getFrame() != this) return;
  if (!active_) {
    next_focus_view_ = view;
    return;
  }
  if (focus_view_ == view) return;
  const SharedPointer<CView> old = std::exchange(focus_view_, view);
  if (view && view->wantsFocus()) view->invalid();
  if (old && old->wantsFocus()) old->invalid();
  if (old) old->looseFocus();
  if (view && focus_view_ == view) view->takeFocus();
}

void CFrame::onActivate(bool state) {
  if (active_ == state) return;
  if (state) {
    active_ = true;
    const SharedPointer<CView> view = std::exchange(next_focus_view_, {});
    if (view) {
      setFocusView(view);
    } else {
      advanceNextFocusView(nullptr);
    }
  } else {
    SharedPointer<CView> view = focus_view_;
    setFocusView(nullptr);
    next_focus_view_ = std::move(view);
    active_ = false;
  }
}

bool CFrame::setModalView(CView* view) {
  if (view && modal_view_) return false;
  if (!view) {
    if (const SharedPointer<CView> old = std::exchange(modal_view_, {})) removeView(old, false);
    return true;
  }
  // The caller's reference stays its own.
  if (!addView(view)) return false;
  modal_view_ = view;
  return true;
}

bool CFrame::takesEvents(CView* child) const {
  return CViewContainer::takesEvents(child) && (!modal_view_ || modal_view_ == child);
}

void CFrame::onViewRemoved(CView* view) {
  std::erase(hovered_, view);
  if (next_focus_view_ == view) next_focus_view_ = nullptr;
  if (focus_view_ == view) setFocusView(nullptr);
  if (modal_view_ == view) modal_view_ = nullptr;
}

// Painting

void CFrame::invalid() {
  setDirty(false);
  CFrame::invalidRect(size);
}

void CFrame::invalidRect(const CRect& rect) {
  const CRect area = CRect(rect).bound(size);
  // What is invalidated while painting would be painted for ever.
  if (!window_ || down_ || painting_ || !isVisible() || area.isEmpty()) return;
  if (platform_calls_ == 0) {
    window_->invalidate(area);
    return;
  }
  if (std::any_of(invalid_.begin(), invalid_.end(), [&](const CRect& other) { return contains(other, area); })) return;
  std::erase_if(invalid_, [&](const CRect& other) { return contains(area, other); });
  invalid_.push_back(area);
}

void CFrame::flush_invalid() {
  for (const CRect& area : std::exchange(invalid_, {})) {
    if (window_) window_->invalidate(area);
  }
}

void CFrame::onStartLocalEventLoop() {
  flush_invalid();
}

void CFrame::draw(CDrawContext* context) {
  CFrame::drawRect(context, size);
}

void CFrame::drawRect(CDrawContext* context, const CRect& updateRect) {
  CViewContainer::drawRect(context, updateRect);
  if (!focus_drawing_ || !focus_view_ || !focus_view_->isVisible() || !focus_view_->wantsFocus()) return;
  CPoint corner;
  focus_view_->getParentView()->localToFrame(corner);
  context->saveGlobalState();
  context->setClipRect(updateRect);
  context->setDrawMode(kAntiAliasing);
  context->setFrameColor(focus_color_);
  context->setLineWidth(focus_width_);
  context->drawRect(focus_view_->getVisibleViewSize().offset(corner), kDrawStroked);
  context->restoreGlobalState();
}

void CFrame::paint(platform::painter& target, const CRect& damaged) {
  if (down_) return;
  painting_ = true;
  const auto context = owned(new CDrawContext(target, damaged));
  drawRect(context, damaged);
  painting_ = false;
}

// Mouse

CMouseEventResult CFrame::onMouseDown(CPoint& where, const CButtonState& buttons) {
  // Other buttons don't take the mouse from a view: it would not get its onMouseUp.
  if (getMouseDownView()) return kMouseEventHandled;
  return CViewContainer::onMouseDown(where, buttons);
}

CMouseEventResult CFrame::onMouseMoved(CPoint& where, const CButtonState& buttons) {
  if (getMouseDownView()) return CViewContainer::onMouseMoved(where, buttons);
  const CButtonState modifiers(buttons.getModifierState());
  hover(where, modifiers);
  return CViewContainer::onMouseMoved(where, modifiers);
}

bool CFrame::onWheel(const CPoint& where, const CMouseWheelAxis& axis, const float& distance,
                     const CButtonState& buttons) {
  return !getMouseDownView() && CViewContainer::onWheel(where, axis, distance, buttons);
}

void CFrame::hover(const CPoint& where, const CButtonState& buttons) {
  std::vector<SharedPointer<CView>> views;
  collectViewsBelow(where, views);
  leave_all_but(views, where, buttons);
  for (const auto& view : views) {
    if (is_among(hovered_, view) || view->getFrame() != this) continue;
    hovered_.push_back(view);
    CPoint position = in_parent(view, where);
    view->onMouseEntered(position, buttons);
  }
}

void CFrame::leave_all_but(const std::vector<SharedPointer<CView>>& views, const CPoint& where,
                           const CButtonState& buttons) {
  const std::vector<SharedPointer<CView>> before = hovered_;
  for (auto view = before.rbegin(); view != before.rend(); ++view) {
    if (is_among(views, *view) || !is_among(hovered_, *view)) continue;
    std::erase(hovered_, *view);
    CPoint position = in_parent(*view, where);
    (*view)->onMouseExited(position, buttons);
  }
}

CMouseEventResult CFrame::mouse_down(const CPoint& where, const CButtonState& buttons) {
  if (down_) return kMouseEventNotHandled;
  platform_call call(this);
  CPoint position(where);
  return onMouseDown(position, buttons);
}

CMouseEventResult CFrame::mouse_moved(const CPoint& where, const CButtonState& buttons) {
  if (down_) return kMouseEventNotHandled;
  platform_call call(this);
  CPoint position(where);
  return onMouseMoved(position, buttons);
}

CMouseEventResult CFrame::mouse_up(const CPoint& where, const CButtonState& buttons) {
  if (down_) return kMouseEventNotHandled;
  platform_call call(this);
  CPoint position(where);
  const CMouseEventResult result = onMouseUp(position, buttons);
  // The pointer may have left the view during its capture.
  if (!down_) hover(where, buttons.getModifierState());
  return result;
}

void CFrame::mouse_left() {
  if (down_ || getMouseDownView()) return;
  platform_call call(this);
  leave_all_but({}, window_ ? window_->mouse_position() : CPoint(), CButtonState());
}

void CFrame::mouse_cancelled() {
  if (down_) return;
  platform_call call(this);
  onMouseCancel();
}

bool CFrame::mouse_wheel(const CPoint& where, CMouseWheelAxis axis, float distance, const CButtonState& buttons) {
  if (down_) return false;
  platform_call call(this);
  return onWheel(where, axis, distance, buttons);
}

void CFrame::activated(bool active) {
  if (down_) return;
  platform_call call(this);
  onActivate(active);
}

// Keys

// To the focus view, its parents, and the modal view, until one of them handles it.
int32_t CFrame::hand_out_key(VstKeyCode& key, int32_t (CView::*handler)(VstKeyCode&)) {
  const SharedPointer<CView> modal = modal_view_;
  bool modal_asked = !modal;
  for (SharedPointer<CView> view = focus_view_; view && view != this; view = view->getParentView()) {
    if (!view->getMouseEnabled()) continue;
    modal_asked |= view == modal;
    CView* const target = view;
    if ((target->*handler)(key) != -1) return 1;
  }
  CView* const last = modal;
  return modal_asked ? -1 : (last->*handler)(key);
}

int32_t CFrame::onKeyDown(VstKeyCode& keyCode) {
  if (down_) return -1;
  platform_call call(this);
  if (hand_out_key(keyCode, &CView::onKeyDown) != -1) return 1;
  if (keyCode.virt != VKEY_TAB || down_) return -1;
  return advanceNextFocusView(focus_view_, (keyCode.modifier & MODIFIER_SHIFT) != 0) ? 1 : -1;
}

int32_t CFrame::onKeyUp(VstKeyCode& keyCode) {
  if (down_) return -1;
  platform_call call(this);
  return hand_out_key(keyCode, &CView::onKeyUp);
}

bool CFrame::key_down(VstKeyCode& key) {
  return onKeyDown(key) == 1;
}

bool CFrame::key_up(VstKeyCode& key) {
  return onKeyUp(key) == 1;
}

}  // namespace VSTGUI
