// MIT License.
#include "editor/editor.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "editor/about_box.h"
#include "editor/artwork.h"
#include "editor/create_editor.h"
#include "editor/product.h"
#include "editor/window_scale.h"
#include "plugin/trace.h"
#include "support/files/operations.h"
#include "support/logbook.h"

using VSTGUI::CBitmap;
using VSTGUI::CColor;
using VSTGUI::CFontDesc;
using VSTGUI::CFrame;
using VSTGUI::CKickButton;
using VSTGUI::CMenuItem;
using VSTGUI::CRect;
using VSTGUI::owned;

namespace {

// The places of the window's controls, before scaling.
// clang-format off
const CRect keyboard_area      ( 22, 133, 553, 214);
const CRect chorus_button_area ( 69,  75, 121,  94);
const CRect reverb_button_area (453,  75, 505,  94);
const CRect octave_button_area (525, 118, 549, 135);
const CRect clear_button_area  ( 23, 115,  41, 132);
const CRect about_button_area  ( 11,   4,  41,  29);
const CRect web_button_area    (441,   4, 567,  29);
const CRect sound_menu_area    (144,  63, 431, 103);
// clang-format on

const CColor lit_text(150, 250, 250, 255);
const CColor unlit_text(81, 145, 145, 255);

constexpr char font_name[] = "Arial";
constexpr double label_size = 8;
constexpr double menu_text_size = 12;

void trace_update(const char* text) {
  halvern::logbook_impl::instance().message(text, halvern::log_level_debug,
                                            halvern::log_dest_file | halvern::log_dest_debugger);
}

}  // namespace

void create_editor(KesrelVocoder4TarvixEffect* effect) {
  register_artwork();  // may throw; past its base's constructor, which sets it on the effect, the editor must not
  new KesrelVocoder4TarvixEditor(effect);
}

KesrelVocoder4TarvixEditor::KesrelVocoder4TarvixEditor(KesrelVocoder4TarvixEffect* owner)
    : AEffGUIEditor(static_cast<AudioEffect*>(owner)), vocoder(owner), scale(window_scale()) {
  rect = window_area();
}

KesrelVocoder4TarvixEditor::~KesrelVocoder4TarvixEditor() {
  KesrelVocoder4TarvixEditor::close();
}

bool KesrelVocoder4TarvixEditor::getRect(ERect** area) {
  if (area == nullptr) return false;
  *area = &rect;
  return true;
}

bool KesrelVocoder4TarvixEditor::open(void* ptr) {
  close();
  try {
    if (build(ptr)) return true;
  } catch (...) {
    halvern::log_caught_exception("editor open failed");
  }
  close();
  return false;
}

// The frame pointer is set when everything is there: a window counts as open from then on.
bool KesrelVocoder4TarvixEditor::build(void* parent) {
  AEffGUIEditor::open(parent);
  VSTGUI::SharedPointer<CFrame> window = owned(new CFrame(CRect(0, 0, window_width, window_height), this));
  window->setBackgroundColor(VSTGUI::kWhiteCColor);
  window->setZoom(scale);
  window->setBackground(owned(new CBitmap("quo_kv4_ME_BG.png")));
  if (!window->open(parent)) return false;
  add_controls(window);
  window->remember();  // until close()
  frame = window;
  open_on.store(std::this_thread::get_id(), std::memory_order_release);
  updateAll();
  return true;
}

void KesrelVocoder4TarvixEditor::add_controls(CFrame* window) {
  keyboard =
      new VSTGUI::keyboard_control(keyboard_area, this, kTagKeyboard, owned(new CBitmap("keyboard_keys_new.png")));
  keyboard->set_layout(octave_layout);
  for (const size_t key : first_chord) keyboard->key_state[key] = 1;
  window->addView(keyboard);
  switchButtons[kTagChorus] =
      add_switch(window, chorus_button_area, kTagChorus, "CHORUS", "switch_L_active_sv_kesrel_72.png");
  switchButtons[kTagReverb] =
      add_switch(window, reverb_button_area, kTagReverb, "REVERB", "switch_R_active_sv_kesrel_72.png");
  switchButtons[kTagOctave] = add_switch(window, octave_button_area, kTagOctave, "", "KVME_+12_Button.png");
  clearButton = add_kick_button(window, clear_button_area, kTagClear, "KV4_MM_X_Button.png");
  aboutButton = add_kick_button(window, about_button_area, kTagAbout, nullptr);
  webButton = add_kick_button(window, web_button_area, kTagWeb, nullptr);
  add_sound_menu(window);
}

VSTGUI::on_off_button* KesrelVocoder4TarvixEditor::add_switch(CFrame* window, const CRect& area, control_tag tag,
                                                              const char* label, const char* bitmap_name) {
  auto* const button = new VSTGUI::on_off_button(area, this, tag, label, owned(new CBitmap(bitmap_name)));
  button->setFont(owned(new CFontDesc(font_name, label_size)));
  button->setOnColour(lit_text);
  button->setOffColour(unlit_text);
  window->addView(button);
  return button;
}

// Without a bitmap the button is invisible: the background shows what can be clicked.
CKickButton* KesrelVocoder4TarvixEditor::add_kick_button(CFrame* window, const CRect& area, control_tag tag,
                                                         const char* bitmap_name) {
  const VSTGUI::SharedPointer<CBitmap> bitmap = owned(bitmap_name != nullptr ? new CBitmap(bitmap_name) : nullptr);
  auto* const button = new CKickButton(area, this, tag, area.getHeight(), bitmap);
  window->addView(button);
  return button;
}

// One entry a row, so that the menu's value is a position in the rows.
void KesrelVocoder4TarvixEditor::add_sound_menu(CFrame* window) {
  menuRows = vocoder->getMenuRows();
  soundMenu = new VSTGUI::option_menu(sound_menu_area, this, owned(new CBitmap("KV4_MM_Menu.png")),
                                      owned(new CBitmap("KV4_MM_Menu_Pressed.png")));
  soundMenu->setFont(owned(new CFontDesc(font_name, menu_text_size)));
  soundMenu->setOnColour(lit_text);
  soundMenu->setOffColour(lit_text);
  window->addView(soundMenu);
  for (const menu_row_ref& row : menuRows) {
    if (row->sound_number == separator_row) {
      soundMenu->addSeparator();
    } else {
      soundMenu->addEntry(row->name.c_str(), -1,
                          row->sound_number == title_row ? CMenuItem::kTitle : CMenuItem::kNoFlags);
    }
  }
}

// A signal from another thread finds the window closed before its views end.
void KesrelVocoder4TarvixEditor::close() {
  open_on.store(std::thread::id(), std::memory_order_release);
  CFrame* const window = frame;
  frame = nullptr;
  if (window != nullptr) window->close();
  AEffGUIEditor::close();
}

void KesrelVocoder4TarvixEditor::setParameter(VstInt32 index, float value) {
  const std::thread::id ui_thread = open_on.load(std::memory_order_acquire);
  if (ui_thread == std::thread::id()) return;
  if (index == update_editor_index) {
    updateUiFlag.store(1, std::memory_order_release);
    trace_update("update ui flag set");
  } else if (index >= 0 && index < parameter_count) {
    if (std::this_thread::get_id() != ui_thread) {
      updateUiFlag.store(1, std::memory_order_release);  // only the thread of the views may touch them
      return;
    }
    VSTGUI::on_off_button* const button = switchButtons[static_cast<size_t>(index)];
    button->setValue(value);
    button->invalid();
  }
}

// The frame's own idle work is not needed: every change here invalidates what it changes.
void KesrelVocoder4TarvixEditor::idle() {
  if (frame == nullptr || updateUiFlag.load(std::memory_order_relaxed) == 0) return;
  trace_update("update ui idle");
  updateUiFlag.exchange(0, std::memory_order_acquire);
  updateAll();
}

void KesrelVocoder4TarvixEditor::updateAll() {
  for (VstInt32 index = 0; index < parameter_count; ++index) setParameter(index, vocoder->getParameter(index));
  const int32_t selected = vocoder->selected_row();
  trace("selected uuid index: ", std::to_string(selected));
  soundMenu->setValue(static_cast<float>(selected));
  soundMenu->invalid();
  key_flags keys;
  vocoder->getPendingKeys(keys);
  std::ranges::copy(keys, keyboard->key_state.begin());
  keyboard->invalid();
}

// A kick button reports 1, then 0: what it does, it does at exactly 1, once.
void KesrelVocoder4TarvixEditor::valueChanged(VSTGUI::CControl* control) {
  const int32_t tag = control->getTag();
  const float value = control->getValue();
  const bool is_pressed = value == 1.0F;
  if (tag == kTagClear && is_pressed) release_all_keys();
  if (tag == kTagAbout && is_pressed) show_about_box();
  if (tag == kTagWeb && is_pressed) files::open_url(std::string(maker_web_host) + product_page_path);
  if (tag == kTagSoundMenu) vocoder->select_preset_by_index(static_cast<int32_t>(value));
  if (tag == kTagKeyboard) send_keys();
  if (tag < parameter_count) vocoder->setParameterAutomated(tag, value);
}

void KesrelVocoder4TarvixEditor::release_all_keys() {
  keyboard->key_state = {};
  keyboard->invalid();
  keyboard->beginEdit();
  keyboard->valueChanged();
  keyboard->endEdit();
  vocoder->set_pending_keys(key_flags{});
}

void KesrelVocoder4TarvixEditor::send_keys() {
  key_flags keys;
  keyboard->getKeys(keys);
  vocoder->set_pending_keys(keys);
}
