// MIT License. What a frame needs of its editor.
#pragma once

#include "vstgui/values.h"

namespace VSTGUI {

class CFrame;

class VSTGUIEditorInterface {
 public:
  virtual void doIdleStuff() {}
  // CKnobMode; -1 leaves it to the frame.
  virtual int32_t getKnobMode() const { return -1; }
  // The user takes hold of the control with this tag, and lets go of it.
  virtual void beginEdit(int32_t /*index*/) {}
  virtual void endEdit(int32_t /*index*/) {}
  // False keeps the old size.
  virtual bool beforeSizeChange(const CRect& /*newSize*/, const CRect& /*oldSize*/) { return true; }
  virtual CFrame* getFrame() const { return frame; }

 protected:
  VSTGUIEditorInterface() = default;
  virtual ~VSTGUIEditorInterface() = default;

  CFrame* frame = nullptr;
};

}  // namespace VSTGUI
