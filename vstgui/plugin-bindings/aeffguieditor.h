// MIT License. Base of a VST 2.4 effect's editor that has a frame.
#pragma once

#include "vst2/aeff_editor.h"
#include "vst2/audio_effect_x.h"
#include "vstgui/component_use.h"
#include "vstgui/vstgui.h"

// The frame is the derived class's to make, in open(), and to close.
class AEffGUIEditor : public AEffEditor, public VSTGUI::VSTGUIEditorInterface {
 public:
  // Registers with the effect, which owns the editor from then on.
  //   effect   an AudioEffect*, converted to void* from just that type; it must be an AudioEffectX
  explicit AEffGUIEditor(void* effect);

  // The address of `rect`.
  bool getRect(ERect** rect) override;
  bool open(void* ptr) override;
  void pollEvents() override;
  void idle() override;
  bool onKeyDown(VstKeyCode& keyCode) override;
  bool onKeyUp(VstKeyCode& keyCode) override;
  virtual void draw(ERect* /*rect*/) {}

  // One for all editors.
  bool setKnobMode(int32_t mode) override;
  int32_t getKnobMode() const override { return knobMode; }

  // To the host, with the tag of the control as the index.
  void beginEdit(int32_t index) override;
  void endEdit(int32_t index) override;
  // Asks the host.
  bool beforeSizeChange(const VSTGUI::CRect& newSize, const VSTGUI::CRect& oldSize) override;
  // Lets the host handle its idle work, at most about 30 times a second.
  void doIdleStuff() override;

  virtual uint32_t getTicks();
  virtual void wait(uint32_t ms);
  // 4.3 as 4 in the upper, 3 in the lower 16 bits.
  virtual int32_t getVstGuiVersion() { return (VSTGUI_VERSION_MAJOR << 16) + VSTGUI_VERSION_MINOR; }

 protected:
  ERect rect{};

 private:
  static int32_t knobMode;

  VSTGUI::component_use components_;
  uint32_t last_ticks_;
  bool in_idle_stuff_ = false;
};
