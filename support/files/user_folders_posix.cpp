// MIT License. User folders, browsers and links on POSIX desktops.
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "support/files/error.h"
#include "support/files/operations.h"

namespace files {

namespace {

// The absolute path in an environment variable; a relative one counts as unset.
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

// Starts a process from a clean slate, whatever the host has set: no descriptors but the standard ones, no blocked
// signals, and a session of its own, so that it doesn't end with the host.
class detached_start {
 public:
  detached_start() {
    posix_spawn_file_actions_init(&actions_);
    posix_spawn_file_actions_addclosefrom_np(&actions_, STDERR_FILENO + 1);
    posix_spawnattr_init(&attributes_);
    sigset_t none;
    sigemptyset(&none);
    posix_spawnattr_setsigmask(&attributes_, &none);
    posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK);
  }
  detached_start(const detached_start&) = delete;
  detached_start& operator=(const detached_start&) = delete;
  ~detached_start() {
    posix_spawnattr_destroy(&attributes_);
    posix_spawn_file_actions_destroy(&actions_);
  }

  // The new process, or -1.
  pid_t run(const char* const* arguments) const {
    pid_t started = -1;
    const int failure =
        posix_spawn(&started, arguments[0], &actions_, &attributes_, const_cast<char* const*>(arguments), environ);
    return failure == 0 ? started : -1;
  }

 private:
  posix_spawn_file_actions_t actions_{};
  posix_spawnattr_t attributes_{};
};

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

// The shell starts the browser in the background and exits at once, so that the host keeps no child process. The
// address is passed as a parameter, never as shell code.
void open_url(const std::string& url) {
  if (url.empty()) return;
  const std::string address = "http://" + url;
  const char* const arguments[] = {"/bin/sh",       "-c",   R"(exec 2>/dev/null; xdg-open "$1" &)", "sh",
                                   address.c_str(), nullptr};
  const pid_t shell = detached_start().run(arguments);
  if (shell < 0) return;
  while (waitpid(shell, nullptr, 0) < 0 && errno == EINTR) {
  }
}

filepath resolve_file_path(const filepath& location) {
  throw error::cannot_resolve_file("files::resolve_file_path() cannot resolve alias!", location.path(),
                                   location.name());
}

}  // namespace files
