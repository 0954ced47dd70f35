// MIT License. Messages: the exception that carries them, and the text operations that they and look-ups share.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// A command that cannot be carried out. The text says in one line what was wrong and what is possible.
struct failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// `text` with A to Z in lower case, whatever the locale.
std::string lower_case(std::string_view text);

// The pieces of `text` between `separator`s, blanks around each removed. An empty text gives one empty piece.
std::vector<std::string> split(std::string_view text, char separator);

// `items` with ", " between them.
std::string joined(const std::vector<std::string>& items);

// `text` with every control character replaced by '?', so that a message stays on its line whatever a file is called.
std::string on_one_line(std::string text);
