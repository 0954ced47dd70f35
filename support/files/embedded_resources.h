// MIT License. Resources for modules whose file format has none: bytes that the build compiles in.
#pragma once

#include <cstdint>
#include <string_view>

namespace files {

struct embedded_resource {
  std::string_view type_name;
  std::string_view res_name;
  const void* bytes;  // these and the texts live as long as the module
  uint32_t size;
};

// Registers `resource` for resource_file. The module registers each of its resources before it opens one; registering a
// type and name again changes nothing. Any thread.
void add_embedded_resource(const embedded_resource& resource);

// Null when it isn't registered, else valid to the end of the process. Case-sensitive. Any thread.
const embedded_resource* find_embedded_resource(std::string_view type_name, std::string_view res_name);

}  // namespace files
