// MIT License. Standard input and output.
#pragma once

#include <string>
#include <string_view>

// Standard input or output, where a file name is expected.
constexpr std::string_view stream_name = "-";

// Everything that comes from standard input. Throws failure when it can't be read, and interrupted.
std::string read_standard_input();

// Writes to standard output. Throws failure, and interrupted when that is because the reader has gone.
void print(std::string_view bytes);
