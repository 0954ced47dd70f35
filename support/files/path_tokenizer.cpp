// MIT License.
#include "support/files/path_tokenizer.h"

#include <algorithm>

namespace files {

std::optional<std::string_view> path_tokenizer::next() {
  left_.remove_prefix(std::min(left_.find_first_not_of(separators_), left_.size()));
  if (left_.empty()) return std::nullopt;
  const std::string_view token = left_.substr(0, left_.find_first_of(separators_));
  left_.remove_prefix(token.size());
  return token;
}

}  // namespace files
