// MIT License.
#define ENABLE_SNDFILE_WINDOWS_PROTOTYPES 1
#include "hosts/voice/sound_file.h"

SNDFILE* open_sound_file(const std::filesystem::path& path, SF_INFO* info) {
  return sf_wchar_open(path.c_str(), SFM_READ, info);
}
