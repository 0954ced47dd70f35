// MIT License. A VST 3 module's functions for its beginning and end, which have other names on each system.
#pragma once

#include "hosts/check/shared_library.h"

// False when the module has a function for its beginning and that fails.
bool enter_vst3_module(const shared_library& library);
void leave_vst3_module(const shared_library& library);
