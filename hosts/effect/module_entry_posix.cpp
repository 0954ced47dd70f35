// MIT License.
#include <dlfcn.h>

#include <filesystem>
#include <system_error>
#include <vector>

#include "hosts/effect/module_entry.h"
#include "hosts/effect/text.h"

namespace fs = std::filesystem;

namespace {

// As in a build or an unpacked archive, and as in an installation, where only these programs should find the module.
constexpr const char* places[] = {"KesrelVocoder4ME.so", "../" KESREL_MODULE_PLACE "/KesrelVocoder4ME.so"};

fs::path own_plugin() {
  const fs::path folder = fs::read_symlink("/proc/self/exe").parent_path();
  std::vector<std::string> missing;
  for (const char* place : places) {
    fs::path candidate = (folder / place).lexically_normal();
    std::error_code ignored;
    if (fs::exists(candidate, ignored)) return candidate;
    missing.push_back(candidate.string());
  }
  throw failure("the plug-in cannot be found: there is neither '" + missing[0] + "' nor '" + missing[1] + "'");
}

}  // namespace

VSTPluginMainProc load_plugin(const std::string& path) {
  // An absolute path: dlopen would look for a bare name among the system's libraries.
  const std::string place = path.empty() ? own_plugin() : fs::absolute(path);
  void* const module = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) throw failure(std::string("the plug-in cannot be loaded: ") + dlerror());
  for (const char* name : {"VSTPluginMain", "MAIN"}) {  // the second is the name in older modules
    if (void* const entry = dlsym(module, name)) return reinterpret_cast<VSTPluginMainProc>(entry);
  }
  throw failure("'" + place + "' is no VST 2.4 plug-in: it has no VSTPluginMain");
}
