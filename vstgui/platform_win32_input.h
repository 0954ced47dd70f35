// MIT License. Buttons and keys of Windows' messages in the views' terms.
#pragma once

#include <windows.h>

#include "vst2/records.h"
#include "vstgui/values.h"

namespace VSTGUI::platform {

// Buttons and modifiers that a mouse message was sent with.
//   held    its MK_ flags
CButtonState buttons_of_message(WPARAM held);

// Those that are down now.
CButtonState buttons_down();

// The button that a press, a double click or a release is about, as a CButton; 0 for other messages.
int32_t button_of_message(UINT message, WPARAM parameter);

// The key of WM_KEYDOWN, WM_KEYUP and their WM_SYS forms.
VstKeyCode read_key(WPARAM key, LPARAM details);

}  // namespace VSTGUI::platform
