// MIT License. X11 has no message box of its own; the view layer's is used.
#include "editor/message_box.h"
#include "editor/window_scale.h"
#include "vstgui/platform.h"

void show_message_box(const std::string& title, const std::string& text) {
  VSTGUI::platform::show_message(title, text, window_scale());
}
