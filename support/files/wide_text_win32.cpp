// MIT License. UTF-16 on Windows.
#include <windows.h>

#include <algorithm>

#include "support/files/wide_text.h"

namespace files {

std::wstring utf8_to_wide(const std::string& text) {
  const int length = static_cast<int>(text.size());
  const int wanted = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, nullptr, 0);
  if (wanted <= 0) return {};
  std::wstring wide(static_cast<size_t>(wanted), L'\0');
  return MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data(), wanted) > 0 ? wide : std::wstring();
}

std::string wide_to_utf8(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  const int wanted = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, nullptr, 0, nullptr, nullptr);
  if (wanted <= 0) return {};
  std::string narrow(static_cast<size_t>(wanted), '\0');
  const int made = WideCharToMultiByte(CP_UTF8, 0, text.data(), length, narrow.data(), wanted, nullptr, nullptr);
  return made > 0 ? narrow : std::string();
}

std::wstring to_long_path(const std::string& path) {
  std::wstring wide = utf8_to_wide(path);
  std::ranges::replace(wide, L'/', L'\\');
  if (wide.size() < MAX_PATH) return wide;
  if (!wide.starts_with(L"\\\\")) return L"\\\\?\\" + wide;
  return L"\\\\?\\UNC" + wide.substr(1);
}

}  // namespace files
