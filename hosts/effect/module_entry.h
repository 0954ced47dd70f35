// MIT License. Loading the module with the effect.
#pragma once

#include <string>

#include "vst2/aeffect.h"

// The module's entry. The module stays loaded.
//   path      empty for the module beside this program or, on POSIX, the one installed with it
//   throws    failure when it can't be loaded, and when it is no VST 2.4 module
VSTPluginMainProc load_plugin(const std::string& path);
