// MIT License. Paths from texts.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// The path that `text` names in UTF-8. On Windows a path takes other texts for the code page's.
inline std::filesystem::path path_of(std::string_view text) {
  return std::u8string(text.begin(), text.end());
}

// The opposite.
inline std::string text_of(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}
