// MIT License. Makes the effect for a host.
#pragma once

#include "vst2/aeffect.h"

// The record of a new effect, which the host ends with effClose. Null, without a log line, when the host doesn't answer
// audioMasterVersion, when its version doesn't pass, and when the effect can't be made.
//   host   the host's callback; null is refused
AEffect* create_effect(audioMasterCallback host);
