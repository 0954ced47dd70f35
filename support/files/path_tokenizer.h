// MIT License. Cuts a relative path into its components.
#pragma once

#include <optional>
#include <string_view>

namespace files {

// Splits a text at runs of separator characters, front to back; tokens are never empty. The text must outlive the
// tokenizer.
class path_tokenizer {
 public:
  path_tokenizer(std::string_view text, std::string_view separators) : left_(text), separators_(separators) {}

  // The next token; nothing at the end of the text.
  std::optional<std::string_view> next();

 private:
  std::string_view left_;
  std::string_view separators_;
};

}  // namespace files
