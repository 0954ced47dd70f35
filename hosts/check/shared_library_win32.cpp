// MIT License.
#include <windows.h>

#include <system_error>

#include "hosts/check/plugin_under_test.h"
#include "hosts/check/shared_library.h"
#include "hosts/effect/paths.h"

shared_library::shared_library(const std::string& path) : handle_(LoadLibraryW(path_of(path).c_str())) {
  if (handle_ == nullptr) {
    throw unusable("'" + path + "': " + std::system_category().message(static_cast<int>(GetLastError())));
  }
}

shared_library::~shared_library() {
  FreeLibrary(static_cast<HMODULE>(handle_));
}

void* shared_library::symbol(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}
