// MIT License.
#include <windows.h>

#include <filesystem>
#include <system_error>

#include "hosts/effect/module_entry.h"
#include "hosts/effect/paths.h"
#include "hosts/effect/text.h"

namespace fs = std::filesystem;

namespace {

fs::path own_plugin() {
  wchar_t program[32768] = {};  // the longest path of all
  GetModuleFileNameW(nullptr, program, static_cast<DWORD>(std::size(program)));
  return fs::path(program).replace_filename("KesrelVocoder4ME.dll");
}

}  // namespace

VSTPluginMainProc load_plugin(const std::string& path) {
  // An absolute path: the system would look for a bare name in its own folders.
  const fs::path place = path.empty() ? own_plugin() : fs::absolute(path_of(path));
  const HMODULE module = LoadLibraryW(place.c_str());
  if (module == nullptr) {
    const std::string reason = std::system_category().message(static_cast<int>(GetLastError()));
    throw failure("the plug-in '" + place.string() + "' cannot be loaded: " + reason);
  }
  for (const char* name : {"VSTPluginMain", "MAIN"}) {  // the second is the name in older modules
    if (const FARPROC entry = GetProcAddress(module, name)) {
      return reinterpret_cast<VSTPluginMainProc>(reinterpret_cast<void*>(entry));
    }
  }
  throw failure("'" + place.string() + "' is no VST 2.4 plug-in: it has no VSTPluginMain");
}
