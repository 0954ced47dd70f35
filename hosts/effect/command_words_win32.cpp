// MIT License.
#include <windows.h>
// After windows.h:
#include <shellapi.h>

#include <string>
#include <vector>

#include "hosts/effect/command_words.h"

namespace {

std::string utf8(const wchar_t* text) {
  const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);  // with the final zero
  if (size <= 0) return {};
  std::string result(static_cast<std::size_t>(size), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text, -1, result.data(), size, nullptr, nullptr);
  result.pop_back();
  return result;
}

// The console belongs to the shell too, which keeps its code page.
struct utf8_console {
  utf8_console() { SetConsoleOutputCP(CP_UTF8); }
  ~utf8_console() { SetConsoleOutputCP(former); }
  utf8_console(const utf8_console&) = delete;
  utf8_console& operator=(const utf8_console&) = delete;

  const UINT former = GetConsoleOutputCP();
};

}  // namespace

command_words utf8_words(int argc, const char* const* argv) {
  static const utf8_console console;
  static std::vector<std::string> texts;
  static std::vector<const char*> words;
  int count = 0;
  wchar_t** const wide = CommandLineToArgvW(GetCommandLineW(), &count);
  if (wide == nullptr) return {argc, argv};
  for (int i = 0; i < count; ++i) texts.push_back(utf8(wide[i]));
  for (const auto& text : texts) words.push_back(text.c_str());
  LocalFree(wide);
  return {count, words.data()};
}
