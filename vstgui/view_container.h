// MIT License. A view that holds other views.
#pragma once

#include <vector>

#include "vstgui/view.h"

namespace VSTGUI {

// What a search for the view at a point takes into account.
class GetViewOptions {
 public:
  enum Options : uint32_t { kNone = 0, kDeep = 1U << 0, kMouseEnabled = 1U << 1 };
  GetViewOptions(uint32_t flags = kNone) : flags_(flags) {}
  bool getDeep() const { return (flags_ & kDeep) != 0; }
  bool getMouseEnabled() const { return (flags_ & kMouseEnabled) != 0; }

 private:
  uint32_t flags_;
};

// Children have coordinates whose origin is the container's corner. The first added is drawn first; the last added gets
// the mouse first.
//
// Its background is its bitmap, or else, if it isn't transparent, its colour: black at first.
class CViewContainer : public CView {
 public:
  explicit CViewContainer(const CRect& rect) : CView(rect) {}
  // Copies the children as well.
  CViewContainer(const CViewContainer& other);
  CBaseObject* newCopy() const override { return new CViewContainer(*this); }

  // Takes over the caller's reference and adds one. Null and views that have a parent are refused.
  virtual bool addView(CView* view);
  virtual bool addView(CView* view, const CRect& mouseableArea, bool mouseEnabled = true);
  // Before a child, or at the end if it is null or no child.
  virtual bool addView(CView* view, CView* before);
  // Without `withForget` the caller gets back the reference that addView took over.
  virtual bool removeView(CView* view, bool withForget = true);
  virtual bool removeAll(bool withForget = true);

  virtual bool isChild(CView* view) const { return isChild(view, false); }
  virtual bool isChild(CView* view, bool deep) const;
  virtual bool hasChildren() const { return !children_.empty(); }
  virtual uint32_t getNbViews() const { return static_cast<uint32_t>(children_.size()); }
  virtual CView* getView(uint32_t index) const;
  // The topmost visible view at a point of the parent; null for none.
  virtual CView* getViewAt(const CPoint& where,
                           const GetViewOptions& options = GetViewOptions(GetViewOptions::kNone)) const;

  virtual void setBackgroundColor(const CColor& color);
  virtual CColor getBackgroundColor() const { return background_color_; }
  // The point of the bitmap that is drawn at the container's corner.
  virtual void setBackgroundOffset(const CPoint& offset);
  virtual const CPoint& getBackgroundOffset() const { return background_offset_; }
  virtual void setBackgroundColorDrawStyle(CDrawStyle style);
  virtual CDrawStyle getBackgroundColorDrawStyle() const { return background_style_; }
  virtual void drawBackgroundRect(CDrawContext* context, const CRect& updateRect);

  // Moves the focus to the next view that wants it, in the order of adding and depth first. False, without a focus,
  // after the last.
  virtual bool advanceNextFocusView(CView* oldFocus, bool reverse = false);
  // Invalidates all dirty views within; true when there were any.
  virtual bool invalidateDirtyViews();

  void draw(CDrawContext* context) override;
  void drawRect(CDrawContext* context, const CRect& updateRect) override;
  bool isDirty() const override;
  // `rect` is in the children's coordinates.
  void invalidRect(const CRect& rect) override;
  void invalid() override;
  CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons) override;
  CMouseEventResult onMouseCancel() override;
  bool onWheel(const CPoint& where, const float& distance, const CButtonState& buttons) override;
  bool onWheel(const CPoint& where, const CMouseWheelAxis& axis, const float& distance,
               const CButtonState& buttons) override;
  bool attached(CView* parent) override;
  bool removed(CView* parent) override;
  CPoint& frameToLocal(CPoint& point) const override;
  CPoint& localToFrame(CPoint& point) const override;
  void beforeDelete() override;

 protected:
  ~CViewContainer() override = default;

  // Whether a child takes part in mouse and focus at all.
  virtual bool takesEvents(CView* child) const { return child->isVisible() && child->getMouseEnabled(); }
  // The views within that want the focus, in the order of the Tab key.
  void collectFocusViews(std::vector<CView*>& views) const;
  // The views below a point of the parent that follow the pointer, outermost first.
  void collectViewsBelow(CPoint where, std::vector<SharedPointer<CView>>& views) const;
  // The child that has captured the mouse.
  CView* getMouseDownView() const { return mouse_down_view_; }

 private:
  using child_list = std::vector<SharedPointer<CView>>;
  // From the top. A copy, so that children may go while events are handed out.
  child_list children_below(const CPoint& where, const CButtonState& buttons) const;
  CPoint to_children(const CPoint& where) const { return where - size.getTopLeft(); }

  child_list children_;
  SharedPointer<CView> mouse_down_view_;
  CColor background_color_ = kBlackCColor;
  CPoint background_offset_;
  CDrawStyle background_style_ = kDrawFilledAndStroked;
};

}  // namespace VSTGUI
