// MIT License. The base of everything on a frame.
#pragma once

#include "vst2/records.h"
#include "vstgui/bitmap.h"
#include "vstgui/draw_context.h"
#include "vstgui/editor_interface.h"

namespace VSTGUI {

class CFrame;

// A rectangle that draws itself and takes mouse and keys. Its own rectangle and every point that it is given are in the
// coordinates of its parent.
//
// Starts visible, enabled for the mouse, opaque, and without a wish for the keyboard focus.
class CView : public CBaseObject {
 public:
  explicit CView(const CRect& size);
  // The copy belongs to no parent.
  CView(const CView& other);
  CView& operator=(const CView&) = delete;
  CBaseObject* newCopy() const override { return new CView(*this); }

  // Drawing. draw() ends with setDirty(false).
  virtual void draw(CDrawContext* context);
  virtual void drawRect(CDrawContext* context, const CRect& /*updateRect*/) { draw(context); }
  virtual bool checkUpdate(const CRect& updateRect) const { return updateRect.rectOverlap(size); }

  // A dirty view is drawn after the frame's next idle(), an invalid one with the next paint.
  virtual bool isDirty() const { return has_flag(dirty_flag); }
  virtual void setDirty(bool state = true) { set_flag(dirty_flag, state); }
  virtual void invalidRect(const CRect& rect);
  virtual void invalid();

  virtual void setVisible(bool state);
  bool isVisible() const { return has_flag(visible_flag) && alphaValue > 0; }
  // 0 to 1.
  virtual void setAlphaValue(float alpha);
  float getAlphaValue() const { return alphaValue; }
  // What is below a transparent view gets the events that it doesn't handle.
  virtual void setTransparency(bool state) { set_flag(transparent_flag, state); }
  bool getTransparency() const { return has_flag(transparent_flag); }

  // Mouse. kMouseEventHandled from onMouseDown captures the mouse until a button goes up.
  virtual CMouseEventResult onMouseDown(CPoint& where, const CButtonState& buttons);
  virtual CMouseEventResult onMouseUp(CPoint& where, const CButtonState& buttons);
  virtual CMouseEventResult onMouseMoved(CPoint& where, const CButtonState& buttons);
  // The capture was lost: there will be no onMouseUp.
  virtual CMouseEventResult onMouseCancel() { return kMouseEventNotImplemented; }
  virtual CMouseEventResult onMouseEntered(CPoint& where, const CButtonState& buttons);
  virtual CMouseEventResult onMouseExited(CPoint& where, const CButtonState& buttons);
  virtual bool hitTest(const CPoint& where, const CButtonState& buttons = -1);
  // Frames call the second form; true when handled.
  virtual bool onWheel(const CPoint& where, const float& distance, const CButtonState& buttons);
  virtual bool onWheel(const CPoint& where, const CMouseWheelAxis& axis, const float& distance,
                       const CButtonState& buttons);
  virtual void setMouseEnabled(bool state = true);
  bool getMouseEnabled() const { return has_flag(mouse_enabled_flag); }
  virtual void setMouseableArea(const CRect& rect) { mouseableArea = rect; }
  const CRect& getMouseableArea() const { return mouseableArea; }
  CRect& getMouseableArea(CRect& rect) const { return rect = mouseableArea; }

  // Keys: 1 when handled, else -1.
  virtual int32_t onKeyDown(VstKeyCode& /*keyCode*/) { return -1; }
  virtual int32_t onKeyUp(VstKeyCode& /*keyCode*/) { return -1; }
  virtual bool wantsFocus() const { return has_flag(wants_focus_flag); }
  virtual void setWantsFocus(bool state) { set_flag(wants_focus_flag, state); }
  virtual void takeFocus() {}
  virtual void looseFocus() {}

  // The mouse area doesn't follow the size.
  virtual void setViewSize(const CRect& rect, bool invalid = true);
  const CRect& getViewSize() const { return size; }
  CRect& getViewSize(CRect& rect) const { return rect = size; }
  CCoord getWidth() const { return size.getWidth(); }
  CCoord getHeight() const { return size.getHeight(); }
  // The part of the view inside its parents, in the coordinates of the view's parent.
  virtual CRect getVisibleViewSize() const;
  // Makes the view as large as its content, if it knows how to.
  virtual bool sizeToFit() { return false; }

  virtual void setBackground(CBitmap* background);
  CBitmap* getBackground() const { return background_; }
  virtual void setDisabledBackground(CBitmap* background);
  CBitmap* getDisabledBackground() const { return disabled_background_; }
  // The disabled one if there is one and the mouse is disabled.
  CBitmap* getDrawBackground() const;

  // Attached views have a frame. Both are false when nothing changes.
  virtual bool attached(CView* parent);
  virtual bool removed(CView* parent);
  bool isAttached() const { return has_flag(attached_flag); }
  bool isSubview() const { return has_flag(subview_flag); }
  void setSubviewState(bool state) { set_flag(subview_flag, state); }
  CView* getParentView() const { return pParentView; }
  CFrame* getFrame() const { return pParentFrame; }
  virtual VSTGUIEditorInterface* getEditor() const;

  virtual CPoint& frameToLocal(CPoint& point) const;
  virtual CPoint& localToFrame(CPoint& point) const;

 protected:
  ~CView() override = default;

  CRect size;
  CRect mouseableArea;
  CFrame* pParentFrame = nullptr;
  CView* pParentView = nullptr;
  int32_t viewFlags;
  float alphaValue = 1.F;

 private:
  enum flag : int32_t {
    visible_flag = 1 << 0,
    mouse_enabled_flag = 1 << 1,
    transparent_flag = 1 << 2,
    wants_focus_flag = 1 << 3,
    dirty_flag = 1 << 4,
    attached_flag = 1 << 5,
    subview_flag = 1 << 6,
  };
  bool has_flag(flag bit) const { return (viewFlags & bit) != 0; }
  void set_flag(flag bit, bool state) { viewFlags = state ? viewFlags | bit : viewFlags & ~bit; }

  SharedPointer<CBitmap> background_;
  SharedPointer<CBitmap> disabled_background_;
};

}  // namespace VSTGUI
