// MIT License. The editor's window as a user interface of the DISTRHO Plugin Framework.
#pragma once

#include <DistrhoUI.hpp>
#include <atomic>
#include <memory>

#include "doors/core/vocoder_door.h"
#include "doors/dpf/top_window.h"
#include "doors/dpf/vocoder_plugin.h"

// Opens the editor in the host's window, or, where there is none (the stand-alone program, and hosts of LV2 that show
// windows but can't embed them), in a top-level window of its own. The framework also makes it to learn the size; it
// opens nothing then.
//
// There is one editor for each plug-in, so a second window takes it over from the first.
//
// All of it belongs to the thread of the window, but close(): when a JACK server goes, its thread calls that.
class vocoder_window : public DISTRHO_NAMESPACE::UI, private door_listener {
 public:
  vocoder_window();
  ~vocoder_window() override;

  // Whether the framework's own loop goes on.
  bool isRunning() const override { return !is_closing_; }
  // Whether the host shall end the window.
  bool isQuitting() const override { return is_closing_; }
  uintptr_t getNativeWindowHandle() const noexcept override { return handle_; }
  void focus() override;
  void close() override { is_closing_ = true; }

 protected:
  // The door has what the host sets, and idle() shows it.
  void parameterChanged(uint32_t /*index*/, float /*value*/) override {}
  void programLoaded(uint32_t /*index*/) override {}
  void stateChanged(const char* /*key*/, const char* /*value*/) override {}

  void uiIdle() override;
  void visibilityChanged(bool visible) override;
  void sizeChanged(uint width, uint height) override;

 private:
  // What the user changes in the editor.
  void edit_begun(door_parameter parameter) override;
  void edited(door_parameter parameter, float value) override;
  void edit_ended(door_parameter parameter) override;

  void open_in(uintptr_t parent);
  void open_on_top();
  void close_editor();
  bool has_editor() const { return plugin_.window() == this; }

  vocoder_plugin& plugin_;
  AEffEditor* const editor_;
  std::unique_ptr<top_window> top_;
  uintptr_t handle_ = 0;
  bool is_idling_ = false;
  bool is_complete_ = false;
  std::atomic<bool> is_closing_{false};
};
