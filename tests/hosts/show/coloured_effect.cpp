// MIT License. An effect whose window has one colour, orange, built on Xlib alone. A click sets parameter 0 and makes
// the window green and larger, and so does the key 'k'. On closing it reports by parameter 1 the process level of its
// blocks, and by parameter 2 whether processing is still on. KESREL_COLOURED names what is different about it.
#include <X11/Xlib.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>

#include "vst2/aeff_editor.h"
#include "vst2/audio_effect_x.h"

namespace {

bool is(const char* difference) {
  const char* const named = std::getenv("KESREL_COLOURED");
  return named != nullptr && std::strcmp(named, difference) == 0;
}

std::atomic<VstInt32> level_in_blocks{kVstProcessLevelUnknown};
bool is_on = false;

class coloured_editor final : public AEffEditor {
 public:
  explicit coloured_editor(AudioEffectX* owner) : AEffEditor(owner), owner_(*owner) {
    // The host has set the scale before it loads the module.
    const char* const scale = std::getenv("KESREL_SCALE");
    size_.right = static_cast<VstInt16>(240 * (scale == nullptr ? 0.0 : std::atof(scale)));
    size_.bottom = 100;
  }

  bool getRect(ERect** rect) override {
    *rect = &size_;
    return true;
  }
  bool open(void* parent) override {
    if (is("refusal")) return false;
    display_ = XOpenDisplay(nullptr);
    window_ = XCreateSimpleWindow(display_, reinterpret_cast<Window>(parent), 0, 0, static_cast<unsigned>(size_.right),
                                  static_cast<unsigned>(size_.bottom), 0, 0, 0xFF8000);
    XSelectInput(display_, window_, ButtonPressMask);
    XMapWindow(display_, window_);
    XSync(display_, False);
    AEffEditor::open(parent);
    return true;
  }
  void close() override {
    XDestroyWindow(display_, window_);  // an error, which --verbose reports, if the parent has gone before
    XCloseDisplay(display_);
    owner_.setParameterAutomated(1, static_cast<float>(level_in_blocks));
    owner_.setParameterAutomated(2, is_on ? 1.0F : 0.0F);
    AEffEditor::close();
  }
  void idle() override {
    owner_.masterIdle();  // comes back here in a host that doesn't take care
    if (level_in_blocks == kVstProcessLevelUnknown) return;
    while (XPending(display_) > 0) {
      XEvent event;
      XNextEvent(display_, &event);
      if (event.type == ButtonPress) press();
    }
  }
  bool onKeyDown(VstKeyCode& key) override {
    if (key.character != 'k') return false;
    press();
    return true;
  }

 private:
  void press() {
    owner_.beginEdit(0);
    owner_.setParameterAutomated(0, 0.5F);
    owner_.endEdit(0);
    owner_.sizeWindow(300, 120);
    owner_.updateDisplay();
    XSetWindowBackground(display_, window_, 0x00FF00);
    XClearWindow(display_, window_);
  }

  AudioEffectX& owner_;
  ERect size_{};
  Display* display_ = nullptr;
  Window window_ = 0;
};

// Passes the host's checks.
class coloured_effect final : public AudioEffectX {
 public:
  explicit coloured_effect(audioMasterCallback host) : AudioEffectX(host, 1, 3) {
    setUniqueID(CCONST('K', 'V', '4', 'M'));
    if (!is("no editor")) setEditor(new coloured_editor(this));
  }
  bool setSpeakerArrangement(VstSpeakerArrangement*, VstSpeakerArrangement*) override { return true; }
  VstIntPtr vendorSpecific(VstInt32, VstIntPtr, void*, float) override { return 1; }
  VstInt32 getChunk(void** data, bool) override {
    *data = bytes_;
    return sizeof bytes_;
  }
  void resume() override { is_on = true; }
  void suspend() override { is_on = false; }
  void processReplacing(float** inputs, float** outputs, VstInt32 count) override {
    const auto is_sound = [](float sample) { return sample != 0.0F; };
    if (std::any_of(inputs[0], inputs[0] + count, is_sound)) level_in_blocks = getCurrentProcessLevel();
    for (int channel = 0; channel < 2; ++channel) std::copy_n(inputs[channel], count, outputs[channel]);
  }

 private:
  char bytes_[5] = {'b', 'y', 't', 'e', 's'};
};

}  // namespace

extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(audioMasterCallback host) {
  return (new coloured_effect(host))->getAeffect();
}
