// MIT License. The window, for hosts that may ask for its size before there is one.
#pragma once

#include "doors/core/vocoder_door.h"
#include "vst2/aeff_editor.h"

// Stands in for the door's editor, which is made when the window first opens. The size is known without it, so that a
// host may list its plug-ins with their sizes and nothing is made. All operations run on the host's user-interface
// thread.
class door_window : public AEffEditor {
 public:
  //   door   used by calls of the host alone, not by the destructor
  explicit door_window(vocoder_door* door) : door_(door) {}

  bool getRect(ERect** area) override;
  bool open(void* parent) override;
  void close() override;
  bool isOpen() override { return editor_ != nullptr && editor_->isOpen(); }
  void pollEvents() override;
  void idle() override;
  bool onKeyDown(VstKeyCode& code) override { return editor_ != nullptr && editor_->onKeyDown(code); }
  bool onKeyUp(VstKeyCode& code) override { return editor_ != nullptr && editor_->onKeyUp(code); }
  bool onWheel(float distance) override { return editor_ != nullptr && editor_->onWheel(distance); }
  bool setKnobMode(VstInt32 mode) override { return editor_ != nullptr && editor_->setKnobMode(mode); }

 private:
  vocoder_door* const door_;
  AEffEditor* editor_ = nullptr;  // the door's, once it has opened
  ERect area_{};
};
