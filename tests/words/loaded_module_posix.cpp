// MIT License.
#include <dlfcn.h>

#include <stdexcept>

#include "tests/words/loaded_module.h"

loaded_module::loaded_module(const std::string& path) : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) throw std::runtime_error(dlerror());
}

loaded_module::~loaded_module() {
  dlclose(handle_);
}

void* loaded_module::symbol(const char* name) const {
  return dlsym(handle_, name);
}
