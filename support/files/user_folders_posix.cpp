// MIT License. What POSIX desktops have of folders, browsers and links.
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>

#include "support/files/error.h"
#include "support/files/operations.h"

namespace files {

namespace {

// The value of an environment variable that names a folder in full; a relative one counts as none.
std::string folder_from_environment(const char* variable) {
  const char* const value = std::getenv(variable);
  return value != nullptr && value[0] == '/' ? value : "";
}

// By the XDG base directory rules.
std::string data_home() {
  std::string folder = folder_from_environment("XDG_DATA_HOME");
  if (!folder.empty()) return folder;
  const std::string home = folder_from_environment("HOME");
  return home.empty() ? "" : home + "/.local/share";
}

// Only what may be called between fork and exec in a program of many threads.
[[noreturn]] void run_detached(const char* program, const char* argument) {
  if (fork() != 0) _exit(0);  // the orphan is the system's to collect
  setsid();
  close_range(STDERR_FILENO + 1, ~0U, 0);
  execlp(program, program, argument, static_cast<char*>(nullptr));
  _exit(EXIT_FAILURE);
}

}  // namespace

filepath get_user_app_support_path() {
  const std::string path = data_home();
  std::error_code failure;
  if (!path.empty()) std::filesystem::create_directories(path, failure);
  if (path.empty() || !std::filesystem::is_directory(path, failure)) {
    throw err::runtime_error("get_user_app_support_path() cannot get the application data path!");
  }
  return filepath(path);
}

void open_url(const std::string& url) {
  if (url.empty()) return;
  const std::string address = "http://" + url;
  const pid_t child = fork();
  if (child == 0) run_detached("xdg-open", address.c_str());
  if (child < 0) return;
  while (waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
}

filepath resolve_file_path(const filepath& location) {
  throw error::cannot_resolve_file("files::resolve_file_path() cannot resolve alias!", location.path(),
                                   location.name());
}

}  // namespace files
