// MIT License. The plug-in's window: a keyboard, three switches, a sound menu, and buttons.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

#include "editor/keyboard_control.h"
#include "editor/on_off_button.h"
#include "editor/option_menu.h"
#include "plugin/effect.h"
#include "vstgui/plugin-bindings/aeffguieditor.h"
#include "vstgui/vstgui.h"

// Tags of the controls. The first three are the effect's parameters.
enum control_tag : int32_t {
  kTagChorus = parameter_chorus_on,
  kTagReverb = parameter_reverb_on,
  kTagOctave = parameter_octave_on,
  kTagKeyboard,
  kTagClear,
  kTagSoundMenu,
  kTagAbout,
  kTagWeb,
};
static_assert(kTagSoundMenu == VSTGUI::option_menu::menu_tag);

// The window shows the effect's state and sends it what the user does; it holds no state of its own. It lives as long
// as the effect, which owns it, while the window opens and closes as the host asks.
//
// From the effect to the window: the effect calls setParameter, on any thread. On the thread that opened the window a
// parameter shows at once. Everything else raises updateUiFlag, and the next idle() reads all state from the effect.
class KesrelVocoder4TarvixEditor : public AEffGUIEditor, public VSTGUI::IControlListener {
 public:
  explicit KesrelVocoder4TarvixEditor(KesrelVocoder4TarvixEffect* owner);
  // Closes the window, if the host has not.
  ~KesrelVocoder4TarvixEditor() override;

  bool getRect(ERect** rect) override;
  // False, with everything as before, when there is no display, no such parent, or no memory. An open window is closed
  // before it opens in another parent.
  bool open(void* ptr) override;
  void close() override;
  void idle() override;
  void setParameter(VstInt32 index, float value) override;

  void valueChanged(VSTGUI::CControl* control) override;

  // Shows all of the effect's state. Only while the window is open.
  void updateAll();

 private:
  bool build(void* parent);
  void add_controls(VSTGUI::CFrame* window);
  VSTGUI::on_off_button* add_switch(VSTGUI::CFrame* window, const VSTGUI::CRect& area, control_tag tag,
                                    const char* label, const char* bitmap_name);
  VSTGUI::CKickButton* add_kick_button(VSTGUI::CFrame* window, const VSTGUI::CRect& area, control_tag tag,
                                       const char* bitmap_name);
  void add_sound_menu(VSTGUI::CFrame* window);
  void release_all_keys();
  void send_keys();

  KesrelVocoder4TarvixEffect* const vocoder;
  const double scale;

  // The frame owns its views and ends them when it closes.
  std::array<VSTGUI::on_off_button*, parameter_count> switchButtons{};  // chorus, reverb and octave, by their tags
  VSTGUI::keyboard_control* keyboard = nullptr;
  VSTGUI::CKickButton* clearButton = nullptr;
  VSTGUI::option_menu* soundMenu = nullptr;
  VSTGUI::CKickButton* aboutButton = nullptr;
  VSTGUI::CKickButton* webButton = nullptr;
  std::vector<menu_row_ref> menuRows;  // as the menu shows them

  std::atomic<int32_t> updateUiFlag{0};
  std::atomic<std::thread::id> open_on{};  // the thread that opened the window; of no thread while it is closed
};
