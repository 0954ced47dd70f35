// MIT License. The file that an effect lives in.
#include "hosts/plugin_module.h"

#include <dlfcn.h>

#include <filesystem>

#include "hosts/failure.h"

namespace fs = std::filesystem;

static fs::path own_plugin() {
  return fs::read_symlink("/proc/self/exe").replace_filename("KesrelVocoder4ME.so");
}

VSTPluginMainProc load_plugin(const std::string& path) {
  // An absolute path, as a bare name would be searched for among the system's libraries.
  const std::string place = path.empty() ? own_plugin() : fs::absolute(path);
  void* const module = dlopen(place.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (module == nullptr) throw failure(std::string("the plug-in cannot be loaded: ") + dlerror());
  for (const char* name : {"VSTPluginMain", "MAIN"}) {  // the second is that of older modules
    if (void* const entry = dlsym(module, name)) return reinterpret_cast<VSTPluginMainProc>(entry);
  }
  throw failure("'" + place + "' is no VST 2.4 plug-in: it has no VSTPluginMain");
}
