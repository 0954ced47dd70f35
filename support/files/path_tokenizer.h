// MIT License. Cuts a relative path into its components.
#pragma once

#include <optional>
#include <string_view>

namespace files {

// Gives the pieces of a text between runs of some characters, from the front; none of them is empty. The text outlives
// the tokenizer.
class path_tokenizer {
 public:
  path_tokenizer(std::string_view text, std::string_view separators) : left_(text), separators_(separators) {}

  // Nothing once the text has ended.
  std::optional<std::string_view> next();

 private:
  std::string_view left_;
  std::string_view separators_;
};

}  // namespace files
