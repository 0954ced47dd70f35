// MIT License. How the formats name this system's kind of window, and its place in a VST3 bundle.
#pragma once

#include <string>

extern const char* const native_clap_api;
extern const char* const native_vst3_type;

// The module's file in the VST3 bundle at `path`; `path` itself when that isn't a bundle.
std::string vst3_binary(const std::string& path);
