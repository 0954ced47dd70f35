// MIT License.
#include <filesystem>

#include "hosts/check/native_names.h"

namespace fs = std::filesystem;

const char* const native_clap_api = "x11";
const char* const native_vst3_type = "X11EmbedWindowID";

std::string vst3_binary(const std::string& path) {
  if (!fs::is_directory(path)) return path;
  const fs::path name = fs::path(path).stem();
  return (fs::path(path) / "Contents" / "x86_64-linux" / name).string() + ".so";
}
