// MIT License.
#include <windows.h>

#include <stdexcept>

#include "tests/words/loaded_module.h"

loaded_module::loaded_module(const std::string& path) : handle_(LoadLibraryA(path.c_str())) {
  if (handle_ == nullptr) throw std::runtime_error("error " + std::to_string(GetLastError()) + " loading " + path);
}

loaded_module::~loaded_module() {
  FreeLibrary(static_cast<HMODULE>(handle_));
}

void* loaded_module::symbol(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}
