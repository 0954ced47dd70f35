// MIT License.
#include "doors/dpf/vocoder_window.h"

namespace {

vocoder_plugin& plugin_of(const DISTRHO_NAMESPACE::UI& window) {
  return *static_cast<vocoder_plugin*>(static_cast<DISTRHO_NAMESPACE::Plugin*>(window.getPluginInstancePointer()));
}

}  // namespace

vocoder_window::vocoder_window() : plugin_(plugin_of(*this)), editor_(plugin_.door().editor()) {
  ERect* area = nullptr;
  if (editor_ != nullptr && editor_->getRect(&area) && area != nullptr) {
    setSize(static_cast<uint>(area->right - area->left), static_cast<uint>(area->bottom - area->top));
  }
  is_complete_ = true;
  if (isStandalone()) plugin_.hold_programs();
  if (isEmbed()) open_in(getParentWindowHandle());
}

vocoder_window::~vocoder_window() {
  hide();
  close_editor();
}

void vocoder_window::focus() {
  if (top_ != nullptr) top_->raise();
}

void vocoder_window::uiIdle() {
  if (top_ != nullptr && top_->handle_events()) close();
  plugin_.load_held_program();
  // An editor that waits for its menu may ask its host to go on.
  if (!has_editor() || is_idling_) return;
  is_idling_ = true;
  editor_->pollEvents();
  plugin_.door().idle();
  is_idling_ = false;
}

void vocoder_window::visibilityChanged(bool visible) {
  if (isEmbed()) return;
  if (visible) {
    is_closing_ = false;
    open_on_top();
  } else {
    close_editor();
  }
}

void vocoder_window::sizeChanged(uint width, uint height) {
  // The framework asks for the first size by itself.
  if (is_complete_) UI::sizeChanged(width, height);
}

void vocoder_window::open_in(uintptr_t parent) {
  if (editor_ == nullptr) return;
  if (auto* const other = plugin_.window(); other != nullptr) editor_->close();
  plugin_.set_window(nullptr);
  // NOLINTNEXTLINE(performance-no-int-to-ptr): that's how a window's number is given to an editor.
  if (!editor_->open(reinterpret_cast<void*>(parent))) return;
  plugin_.set_window(this);
  handle_ = newest_child(parent);
}

void vocoder_window::open_on_top() {
  top_ = make_top_window(getTitle(), {getWidth(), getHeight()}, getTransientWindowId());
  if (top_ == nullptr) {
    d_stderr("%s: there is no display for the window", getTitle());
    return;
  }
  open_in(top_->handle());
  top_->show();
}

void vocoder_window::close_editor() {
  if (has_editor()) {
    editor_->close();
    plugin_.set_window(nullptr);
  }
  top_.reset();
  handle_ = 0;
}

void vocoder_window::edit_begun(door_parameter parameter) {
  editParameter(static_cast<uint32_t>(parameter), true);
}

void vocoder_window::edited(door_parameter parameter, float value) {
  setParameterValue(static_cast<uint32_t>(parameter), value);
}

void vocoder_window::edit_ended(door_parameter parameter) {
  editParameter(static_cast<uint32_t>(parameter), false);
}

// The framework's entry point, called for each window.
DISTRHO_NAMESPACE::UI* DISTRHO_NAMESPACE::createUI() {
  return new vocoder_window;
}
