// MIT License.
#include <filesystem>

#include "hosts/check/native_names.h"
#include "hosts/effect/paths.h"

namespace fs = std::filesystem;

const char* const native_clap_api = "win32";
const char* const native_vst3_type = "HWND";

std::string vst3_binary(const std::string& path) {
  const fs::path place = path_of(path);
  if (!fs::is_directory(place)) return path;
  const std::u8string inner = (place / "Contents" / "x86_64-win" / place.filename()).u8string();
  return {inner.begin(), inner.end()};
}
