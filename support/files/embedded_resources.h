// MIT License. The resources of a module whose file format has none: bytes that the build made part of the code.
#pragma once

#include <cstdint>
#include <string_view>

namespace files {

struct embedded_resource {
  std::string_view type_name;
  std::string_view res_name;
  const void* bytes;  // these and the texts stay where they are for the module's life
  uint32_t size;
};

// Makes `resource` known to resource_file. The module calls it for each of its resources before it opens one; a type
// and name that is known already stays as it is. Any thread.
void add_embedded_resource(const embedded_resource& resource);

// Null when it isn't known; else valid to the end of the process. Upper and lower case differ. Any thread.
const embedded_resource* find_embedded_resource(std::string_view type_name, std::string_view res_name);

}  // namespace files
