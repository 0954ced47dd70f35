// MIT License. Buttons, modifiers and keys of X11 events as the view layer has them.
#pragma once

#include <X11/Xlib.h>

#include <string>

#include "vst2/records.h"
#include "vstgui/values.h"

namespace VSTGUI::platform {

// The buttons and modifiers in an event's state. Num Lock, Caps Lock and other latches don't count, and neither do the
// wheel's buttons.
CButtonState buttons_of_state(unsigned state);

// A mask of CButton; 0 for the wheel and for buttons that the view layer doesn't know.
int32_t button_mask(unsigned button);

// What a wheel's button reports; false for other buttons. Upward and to the left are positive.
bool wheel_step(unsigned button, CMouseWheelAxis* axis, float* distance);

struct key_press {
  VstKeyCode code;   // `character` is a Unicode one, 0 for keys without and for those that `virt` names
  std::string text;  // what the key types, in UTF-8
};
key_press read_key(const XKeyEvent& event);

}  // namespace VSTGUI::platform
