// MIT License.
#include "support/files/embedded_resources.h"

#include <forward_list>
#include <mutex>

namespace files {

namespace {

// Constructed at first use and never destroyed: a host may load state from a static destructor. Entries never move.
struct known_resources {
  std::mutex lock;
  std::forward_list<embedded_resource> entries;
};

known_resources& known() {
  static auto* const resources = new known_resources;
  return *resources;
}

const embedded_resource* find(const known_resources& resources, std::string_view type_name, std::string_view res_name) {
  for (const embedded_resource& entry : resources.entries) {
    if (entry.type_name == type_name && entry.res_name == res_name) return &entry;
  }
  return nullptr;
}

}  // namespace

void add_embedded_resource(const embedded_resource& resource) {
  known_resources& resources = known();
  const std::lock_guard guard(resources.lock);
  if (find(resources, resource.type_name, resource.res_name) == nullptr) resources.entries.push_front(resource);
}

const embedded_resource* find_embedded_resource(std::string_view type_name, std::string_view res_name) {
  known_resources& resources = known();
  const std::lock_guard guard(resources.lock);
  return find(resources, type_name, res_name);
}

}  // namespace files
