// MIT License.
#include "hosts/voice/sound_file.h"

SNDFILE* open_sound_file(const std::filesystem::path& path, SF_INFO* info) {
  return sf_open(path.c_str(), SFM_READ, info);
}
