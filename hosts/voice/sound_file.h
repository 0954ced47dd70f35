// MIT License. Opening a sound file by its name.
#pragma once

#include <sndfile.h>

#include <filesystem>

// Opens a sound file for reading. Null when it can't be opened or is none; then sf_strerror(nullptr) has the reason.
//   info   receives its properties
SNDFILE* open_sound_file(const std::filesystem::path& path, SF_INFO* info);
