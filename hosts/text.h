// MIT License. Small text operations that messages and look-ups share.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// `text` with A to Z in lower case, whatever the locale.
std::string lower_case(std::string_view text);

// The pieces of `text` between `separator`s, blanks around each removed. An empty text gives one empty piece.
std::vector<std::string> split(std::string_view text, char separator);

// `items` with ", " between them.
std::string joined(const std::vector<std::string>& items);

// `text` with every control character replaced by '?', so that a message stays on its line whatever a file is called.
std::string on_one_line(std::string text);

// Edits (insert, remove, replace) that turn `wanted` into the best matching stretch of `text`; where that stretch
// starts and ends costs nothing.
//   source   Sellers, "The theory and computation of evolutionary distances", 1980
int edits_to_a_part_of(std::string_view text, std::string_view wanted);
