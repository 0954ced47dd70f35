// MIT License.
#include <windows.h>

#include <algorithm>
#include <filesystem>
#include <stdexcept>

#include "hosts/effect/paths.h"
#include "tests/hosts/command.h"

namespace {

// In quotes, so that the program finds `word` on its command line as it is.
std::wstring quoted(const std::string& word) {
  std::wstring result = L"\"";
  std::size_t backslashes = 0;
  for (const wchar_t c : path_of(word).wstring()) {
    if (c == L'"') result.append(backslashes + 1, L'\\');
    backslashes = c == L'\\' ? backslashes + 1 : 0;
    result += c;
  }
  return result.append(backslashes, L'\\') + L"\"";
}

class open_handle {
 public:
  explicit open_handle(HANDLE handle) : handle_(handle) {
    if (handle == INVALID_HANDLE_VALUE) throw std::runtime_error("a file can't be opened");
  }
  ~open_handle() { CloseHandle(handle_); }
  open_handle(const open_handle&) = delete;
  open_handle& operator=(const open_handle&) = delete;

  HANDLE get() const { return handle_; }

 private:
  HANDLE handle_;
};

HANDLE inheritable_file(const std::string& path, DWORD access, DWORD disposition) {
  SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
  return CreateFileW(path_of(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited, disposition, 0,
                     nullptr);
}

// Lines end in a line feed alone, as on POSIX.
std::string text_of(const std::string& path) {
  std::string text = read_file(path);
  std::erase(text, '\r');
  return text;
}

constexpr int never_started = -1;

outcome run_once(const arguments& words, const std::string& out, const char* program) {
  const temporary_folder output;
  const std::wstring module = std::filesystem::absolute(path_of(program)).make_preferred().wstring();
  std::wstring line = L"\"" + module + L"\"";
  for (const auto& word : words) line += L" " + quoted(word);
  DWORD status = 0;
  {
    const open_handle in(inheritable_file("NUL", GENERIC_READ, OPEN_EXISTING));
    const open_handle printed(inheritable_file(out.empty() ? output.path("out") : out, GENERIC_WRITE, CREATE_ALWAYS));
    const open_handle errors(inheritable_file(output.path("error"), GENERIC_WRITE, CREATE_ALWAYS));
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = in.get();
    startup.hStdOutput = printed.get();
    startup.hStdError = errors.get();
    PROCESS_INFORMATION started{};
    if (!CreateProcessW(module.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &started)) {
      return {never_started, "error " + std::to_string(GetLastError()), ""};
    }
    CloseHandle(started.hThread);
    const open_handle process(started.hProcess);
    WaitForSingleObject(process.get(), INFINITE);
    GetExitCodeProcess(process.get(), &status);
  }
  return {static_cast<int>(status), out.empty() ? text_of(output.path("out")) : "", text_of(output.path("error"))};
}

}  // namespace

// Now and then Wine ends a program before its first instruction, without a word, or says that it can't be started; our
// programs give their reason.
outcome run(const arguments& words, const std::string& out, const char* program) {
  outcome result = run_once(words, out, program);
  for (int i = 0; i < 2 && result.status != 0 && result.error.empty(); ++i) result = run_once(words, out, program);
  if (result.status == never_started)
    throw std::runtime_error(std::string(program) + " can't be started: " + result.out);
  return result;
}
