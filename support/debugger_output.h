// MIT License. Where the operating system shows a program's debugging text.
#pragma once

namespace halvern {

// Writes `text` as it is, without a line end. On POSIX that is standard error.
void write_to_debugger(const char* text);

}  // namespace halvern
