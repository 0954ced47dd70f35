// MIT License. Opening a sound file by its name.
#pragma once

#include <sndfile.h>

#include <filesystem>

// Opens a sound file for reading. Returns null when it can't be opened or isn't a sound file; sf_strerror(nullptr) then
// gives the reason.
//   info   receives its properties
SNDFILE* open_sound_file(const std::filesystem::path& path, SF_INFO* info);
