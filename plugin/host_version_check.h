// MIT License. Decides whether the plug-in runs in a host.
#pragma once

#include "vst2/aeffect.h"

// True when the host supports version 2 of the interface or a later one.
//   master_version   the host's answer to audioMasterVersion: 1, 2, or as 2400 from version 2.1 on
bool host_version_passes(VstInt32 master_version);
