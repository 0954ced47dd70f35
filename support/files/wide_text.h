// MIT License. Conversion to and from the UTF-16 of Windows calls. Windows only.
#pragma once

#include <string>

namespace files {

// Empty for an empty text and for one that the system can't convert.
std::wstring utf8_to_wide(const std::string& text);
std::string wide_to_utf8(const std::wstring& text);

// The form of a path for a system call: with backslashes, and from 260 characters on with the prefix that lifts the
// system's limit of length.
std::wstring to_long_path(const std::string& path);

}  // namespace files
