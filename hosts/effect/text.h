// MIT License. The exception for commands that fail, and small text operations.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// A command cannot be carried out. The text says in one line what is wrong and what would be possible.
struct failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// `text` with A to Z in lower case, whatever the locale.
std::string lower_case(std::string_view text);

// The parts of `text` between separators, without the blanks around each. An empty text gives one empty part.
std::vector<std::string> split(std::string_view text, char separator);

// `items` with ", " between them.
std::string joined(const std::vector<std::string>& items);

// `text` with every control character replaced by '?': a file's name may contain a line break.
std::string on_one_line(std::string text);
