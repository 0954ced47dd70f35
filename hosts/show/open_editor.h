// MIT License. The effect's editor, open in a window of the host.
#pragma once

#include "hosts/effect/effect_host.h"
#include "hosts/show/host_answers.h"
#include "hosts/show/host_window.h"

// Opens the editor in a window of its size, and closes both: the editor first.
class open_editor {
 public:
  //   throws   failure when the effect has no editor, or when that refuses
  open_editor(effect_host* host, host_answers* answers, host_window* window);
  ~open_editor();
  open_editor(const open_editor&) = delete;
  open_editor& operator=(const open_editor&) = delete;

  // The editor's turn to work. Does nothing within itself: an editor that waits for a menu may ask its host to go on.
  void idle();

 private:
  void close();

  effect_host& host_;
  host_answers& answers_;
  host_window& window_;
  bool is_idling_ = false;
};
