// MIT License. Views with a value, and who listens to them.
#pragma once

#include <vector>

#include "vstgui/view.h"

namespace VSTGUI {

class CControl;

// clang-format off
// Styles of displays, menus and others, as a mask.
enum CControlEnum : int32_t {
  kHorizontal         = 1 <<  0,
  kVertical           = 1 <<  1,
  kShadowText         = 1 <<  2,
  kLeft               = 1 <<  3,
  kRight              = 1 <<  4,
  kTop                = 1 <<  5,
  kBottom             = 1 <<  6,
  k3DIn               = 1 <<  7,
  k3DOut              = 1 <<  8,
  kPopupStyle         = 1 <<  9,
  kCheckStyle         = 1 << 10,
  kMultipleCheckStyle = kCheckStyle | 1,
  kNoTextStyle        = 1 << 11,
  kNoDrawStyle        = 1 << 12,
  kDoubleClickStyle   = 1 << 13,
  kNoFrame            = 1 << 14,
  kRoundRectStyle     = 1 << 15,
};
// clang-format on

class IControlListener {
 public:
  virtual ~IControlListener() = default;

  virtual void valueChanged(CControl* control) = 0;
  // A press with a modifier key or the right button. 1 when handled: the control doesn't see the press.
  virtual int32_t controlModifierClicked(CControl* /*control*/, CButtonState /*buttons*/) { return 0; }
  virtual void controlBeginEdit(CControl* /*control*/) {}
  virtual void controlEndEdit(CControl* /*control*/) {}
  virtual void controlTagWillChange(CControl* /*control*/) {}
  virtual void controlTagDidChange(CControl* /*control*/) {}
};

// Starts with value 0 in a range of 0 to 1, default 0.5, and dirty.
class CControl : public CView {
 public:
  //   listener     not owned; may be null
  //   background   may be null
  explicit CControl(const CRect& size, IControlListener* listener = nullptr, int32_t tag = 0,
                    CBitmap* background = nullptr);
  // Isn't being edited, and has no listeners but the first.
  CControl(const CControl& other);
  CBaseObject* newCopy() const override = 0;

  void draw(CDrawContext* context) override = 0;

  // Limited to the range. Doesn't call the listener.
  virtual void setValue(float val);
  virtual float getValue() const { return value; }
  virtual void setValueNormalized(float val);
  virtual float getValueNormalized() const;
  virtual void setMin(float val);
  virtual float getMin() const { return vmin; }
  virtual void setMax(float val);
  virtual float getMax() const { return vmax; }
  float getRange() const { return getMax() - getMin(); }
  virtual void setDefaultValue(float val) { defaultValue = val; }
  virtual float getDefaultValue() const { return defaultValue; }
  virtual void setOldValue(float val) { oldValue = val; }
  virtual float getOldValue() const { return oldValue; }
  virtual void setWheelInc(float val) { wheelInc = val; }
  virtual float getWheelInc() const { return wheelInc; }
  // Brings the value back into the range.
  virtual void bounceValue();
  // Sets the default value, as an edit, if the buttons are those that ask for it: left with Control.
  virtual bool checkDefaultValue(CButtonState button);

  // Reports the value.
  virtual void valueChanged();
  // Calls nest; the first begin and the last end are reported, to the listeners and to the frame.
  virtual void beginEdit();
  virtual void endEdit();
  bool isEditing() const { return editing > 0; }

  virtual void setTag(int32_t val);
  virtual int32_t getTag() const { return tag; }
  virtual void setListener(IControlListener* l) { listener = l; }
  virtual IControlListener* getListener() const { return listener; }
  // Further listeners, for all but controlModifierClicked.
  virtual void registerControlListener(IControlListener* subListener);
  virtual void unregisterControlListener(IControlListener* subListener);

  // The point of the bitmap that is drawn at the view's corner.
  virtual void setBackOffset(const CPoint& offset) { backOffset = offset; }
  virtual const CPoint& getBackOffset() const { return backOffset; }

  // A value that differs from the old one makes a control dirty, too.
  bool isDirty() const override { return oldValue != value || CView::isDirty(); }
  void setDirty(bool val = true) override;

 protected:
  ~CControl() override = default;

  IControlListener* listener;
  int32_t tag;
  float oldValue = 1.F;
  float defaultValue = 0.5F;
  float value = 0.F;
  float vmin = 0.F;
  float vmax = 1.F;
  float wheelInc = 0.1F;
  int32_t editing = 0;
  CPoint backOffset;

 private:
  void report(void (IControlListener::*event)(CControl*));

  std::vector<IControlListener*> sub_listeners_;
};

// For controls whose bitmap holds several images, one above the other.
class IMultiBitmapControl {
 public:
  virtual void setHeightOfOneImage(const CCoord& height) { heightOfOneImage = height; }
  virtual CCoord getHeightOfOneImage() const { return heightOfOneImage; }
  virtual void setNumSubPixmaps(int32_t number) { subPixmaps = number; }
  virtual int32_t getNumSubPixmaps() const { return subPixmaps; }
  // The height of the view.
  virtual void autoComputeHeightOfOneImage();

 protected:
  IMultiBitmapControl() = default;
  virtual ~IMultiBitmapControl() = default;

  CCoord heightOfOneImage = 0;
  int32_t subPixmaps = 0;
};

}  // namespace VSTGUI
