// MIT License. Keys of X as the VST 2.4 interface numbers them.
#pragma once

#include <X11/Xlib.h>

#include "vst2/records.h"

// The code of `event`'s key, with its modifiers. Neither character nor virtual key is set for a key that has no code.
VstKeyCode key_code_of(XKeyEvent* event);
