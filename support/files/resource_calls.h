// MIT License. The platform calls behind resource streams.
#pragma once

#include <cstdint>
#include <string>

namespace files::system {

// The module that contains this code; null on platforms where it isn't needed.
const void* this_module();

// Null when there is no such resource. The pointers stay valid as long as the module is loaded.
//   id         names the resource when `res_name` is empty
const void* find_resource(const void* module, const std::string& type_name, const std::string& res_name, uint32_t id,
                          uint32_t language);

// In bytes; 0 when unknown.
uint32_t resource_size(const void* module, const void* resource);

// The bytes of a found resource, or null.
const uint8_t* lock_resource(const void* module, const void* resource);

}  // namespace files::system
