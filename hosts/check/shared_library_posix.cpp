// MIT License.
#include <dlfcn.h>

#include "hosts/check/plugin_under_test.h"
#include "hosts/check/shared_library.h"

shared_library::shared_library(const std::string& path) : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) throw unusable(dlerror());
}

shared_library::~shared_library() {
  dlclose(handle_);
}

void* shared_library::symbol(const char* name) const {
  return dlsym(handle_, name);
}
