// MIT License. Resources on POSIX, where module files have none: those that the module has registered.
#include "support/files/embedded_resources.h"
#include "support/files/resource_calls.h"

namespace files::system {

const void* this_module() {
  return nullptr;
}

const void* find_resource(const void*, const std::string& type_name, const std::string& res_name, uint32_t, uint32_t) {
  return find_embedded_resource(type_name, res_name);
}

uint32_t resource_size(const void*, const void* resource) {
  return static_cast<const embedded_resource*>(resource)->size;
}

const uint8_t* lock_resource(const void*, const void* resource) {
  return static_cast<const uint8_t*>(static_cast<const embedded_resource*>(resource)->bytes);
}

}  // namespace files::system
