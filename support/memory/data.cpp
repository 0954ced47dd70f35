// MIT License.
#include "support/memory/data.h"

namespace memory {

const uint8_t* end_of_owner(const data& block) {
  const data* owner = &block;
  while (const auto* const window = dynamic_cast<const child_data_reference*>(owner)) owner = &window->parent();
  return owner->bytes() + owner->size();
}

}  // namespace memory
