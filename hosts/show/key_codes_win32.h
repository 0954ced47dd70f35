// MIT License. Keys of Windows as the VST 2.4 interface numbers them.
#pragma once

#include <windows.h>

#include "vst2/records.h"

// The code of a key message, with the modifiers that are down. Neither character nor virtual key is set for a key that
// has no code.
VstKeyCode key_code_of(WPARAM key, LPARAM details);
