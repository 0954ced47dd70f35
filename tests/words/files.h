// MIT License. Whole files as strings of bytes.
#pragma once

#include <fstream>
#include <iterator>
#include <string>

// The bytes of a file; empty when it can't be read.
inline std::string read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

// Makes or replaces a file.
inline void write_file(const std::string& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}
