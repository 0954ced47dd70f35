// MIT License. What a command that cannot be carried out throws.
#pragma once

#include <stdexcept>

// The text names what was wrong and what is possible, in one line.
struct failure : std::runtime_error {
  using std::runtime_error::runtime_error;
};
