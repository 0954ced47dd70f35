// MIT License. Makes the effect for a host.
#pragma once

#include "vst2/aeffect.h"

// The record of a new effect, which the host ends with effClose. Null when the host is too old to answer
// audioMasterVersion, when its version does not pass, and when the effect cannot be made; the log stays silent about
// it.
//   host   the host's callback; null is refused
AEffect* create_effect(audioMasterCallback host);
