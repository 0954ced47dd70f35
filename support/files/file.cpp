// MIT License.
#include "support/files/file.h"

#include <algorithm>
#include <limits>

namespace files {

int64_t file::seek_target(int64_t offset, seek_origin origin, uint64_t size) const {
  constexpr int64_t highest = std::numeric_limits<int64_t>::max();
  int64_t base = 0;
  if (origin == seek_origin::position) base = position_;
  if (origin == seek_origin::end) base = static_cast<int64_t>(std::min(size, static_cast<uint64_t>(highest)));
  int64_t target = 0;
  if (!__builtin_add_overflow(base, offset, &target)) return target;
  return offset > 0 ? highest : std::numeric_limits<int64_t>::min();
}

}  // namespace files
