// MIT License. The file that an effect lives in.
#pragma once

#include <string>

#include "vst2/aeffect.h"

// Loads the module at `path`, for good, and returns its entry. An empty path means KesrelVocoder4ME.so beside this
// program. Throws failure for what is no module or has no entry.
VSTPluginMainProc load_plugin(const std::string& path);
