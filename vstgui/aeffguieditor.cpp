// MIT License.
#include "vstgui/plugin-bindings/aeffguieditor.h"

#include <chrono>
#include <thread>

using VSTGUI::CRect;

namespace {

// Between two calls of the host's idle function, about 30 a second.
constexpr uint32_t idle_interval_ms = 31;

}  // namespace

int32_t AEffGUIEditor::knobMode = VSTGUI::kCircularMode;

AEffGUIEditor::AEffGUIEditor(void* owner)
    : AEffEditor(static_cast<AudioEffect*>(owner)), last_ticks_(VSTGUI::platform::ticks_ms()) {
  if (effect) effect->setEditor(this);
}

bool AEffGUIEditor::getRect(ERect** ppRect) {
  *ppRect = &rect;
  return true;
}

bool AEffGUIEditor::open(void* ptr) {
  return AEffEditor::open(ptr);
}

void AEffGUIEditor::pollEvents() {
  if (frame) frame->pollPlatformEvents();
}

void AEffGUIEditor::idle() {
  if (frame && !in_idle_stuff_) frame->idle();
}

bool AEffGUIEditor::onKeyDown(VstKeyCode& keyCode) {
  return frame && frame->onKeyDown(keyCode) > 0;
}

bool AEffGUIEditor::onKeyUp(VstKeyCode& keyCode) {
  return frame && frame->onKeyUp(keyCode) > 0;
}

bool AEffGUIEditor::setKnobMode(int32_t mode) {
  knobMode = mode;
  return true;
}

void AEffGUIEditor::beginEdit(int32_t index) {
  if (effect) static_cast<AudioEffectX*>(effect)->beginEdit(index);
}

void AEffGUIEditor::endEdit(int32_t index) {
  if (effect) static_cast<AudioEffectX*>(effect)->endEdit(index);
}

bool AEffGUIEditor::beforeSizeChange(const CRect& newSize, const CRect& /*oldSize*/) {
  return effect && static_cast<AudioEffectX*>(effect)->sizeWindow(static_cast<VstInt32>(newSize.getWidth()),
                                                                  static_cast<VstInt32>(newSize.getHeight()));
}

void AEffGUIEditor::doIdleStuff() {
  const uint32_t now = getTicks();
  if (in_idle_stuff_ || now - last_ticks_ < idle_interval_ms) return;
  last_ticks_ = now;
  idle();
  // The host may call idle() from here.
  in_idle_stuff_ = true;
  if (effect) effect->masterIdle();
  in_idle_stuff_ = false;
}

uint32_t AEffGUIEditor::getTicks() {
  return VSTGUI::platform::ticks_ms();
}

void AEffGUIEditor::wait(uint32_t ms) {
  std::this_thread::sleep_for(std::chrono::milliseconds(ms));
}
