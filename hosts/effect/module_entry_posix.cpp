// MIT License.
#include <dlfcn.h>

#include <filesystem>

#include "hosts/effect/module_entry.h"
#include "hosts/effect/text.h"

namespace fs = std::filesystem;

namespace {

fs::path own_plugin() {
  return fs::read_symlink("/proc/self/exe").replace_filename("KesrelVocoder4ME.so");
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
