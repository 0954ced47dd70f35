// MIT License. What systems do differently about standard streams.
#pragma once

#include <cstdio>

// Whether standard error is a terminal that understands the sequence to clear a line, ESC [ K.
bool is_error_terminal();

// From now on `stream` passes all bytes on as they are: Windows changes the ends of lines otherwise.
void pass_all_bytes(std::FILE* stream);
