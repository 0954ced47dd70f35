// MIT License. Resources on Windows.
#include <windows.h>

#include "support/files/resource_calls.h"
#include "support/files/wide_text.h"

namespace files::system {

namespace {

HMODULE handle_of(const void* module) {
  return static_cast<HMODULE>(const_cast<void*>(module));
}

HRSRC resource_of(const void* resource) {
  return static_cast<HRSRC>(const_cast<void*>(resource));
}

}  // namespace

const void* this_module() {
  HMODULE module = nullptr;
  GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                     reinterpret_cast<LPCWSTR>(&this_module), &module);
  return module;
}

const void* find_resource(const void* module, const std::string& type_name, const std::string& res_name, uint32_t id,
                          uint32_t language) {
  const std::wstring name = utf8_to_wide(res_name);
  return FindResourceExW(handle_of(module), utf8_to_wide(type_name).c_str(),
                         name.empty() ? MAKEINTRESOURCEW(id) : name.c_str(), static_cast<WORD>(language));
}

uint32_t resource_size(const void* module, const void* resource) {
  return SizeofResource(handle_of(module), resource_of(resource));
}

const uint8_t* lock_resource(const void* module, const void* resource) {
  const HGLOBAL loaded = LoadResource(handle_of(module), resource_of(resource));
  return loaded == nullptr ? nullptr : static_cast<const uint8_t*>(LockResource(loaded));
}

}  // namespace files::system
