// MIT License. Base class of an effect's editor window.
#pragma once

#include "vst2/aeffect.h"

class AudioEffect;

// All operations but setParameter run on the host's user-interface thread.
//
// An editor passed to AudioEffect::setEditor belongs to the effect, which deletes it in its base destructor: an
// editor's destructor must not call the effect.
class AEffEditor {
 public:
  // Doesn't register with the effect: see AudioEffect::setEditor.
  explicit AEffEditor(AudioEffect* owner = nullptr) : effect(owner) {}
  virtual ~AEffEditor() = default;
  AEffEditor(const AEffEditor&) = delete;
  AEffEditor& operator=(const AEffEditor&) = delete;

  virtual AudioEffect* getEffect() { return effect; }

  // Returns the window's size, which must stay valid after the call. May be called while the editor is closed.
  virtual bool getRect(ERect** rect) {
    *rect = nullptr;
    return false;
  }

  // Opens the editor inside the parent window `ptr`: on X11 the window id, on Windows its handle. May be called again
  // without a close.
  virtual bool open(void* ptr) {
    systemWindow = ptr;
    return false;
  }

  // May be called again without an open.
  virtual void close() { systemWindow = nullptr; }
  virtual bool isOpen() { return systemWindow != nullptr; }

  // Handles what the window system has queued; the dispatcher calls it before idle(). On X11 a guest in the host's
  // window has no event loop of its own. May be called while the editor is closed.
  virtual void pollEvents() {}

  // The host's regular call while the editor is open, 10 to 60 times a second.
  virtual void idle() {}

  // For effects that tell their editor of changes: a parameter has a new value. Any thread. No host calls it.
  virtual void setParameter(VstInt32 /*index*/, float /*value*/) {}

  // Keys and wheel; true when the editor handled them.
  virtual bool onKeyDown(VstKeyCode& /*keyCode*/) { return false; }
  virtual bool onKeyUp(VstKeyCode& /*keyCode*/) { return false; }
  virtual bool onWheel(float /*distance*/) { return false; }

  // 0 circular, 1 relative circular, 2 linear; true when the editor has knobs.
  virtual bool setKnobMode(VstInt32 /*mode*/) { return false; }

 protected:
  AudioEffect* effect;
  void* systemWindow = nullptr;  // parent window while open
};
