// MIT License.
#include "hosts/check/isolated.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>

namespace {

using steady = std::chrono::steady_clock;

// First the kind as a digit, then the text.
void send(int pipe_end, const verdict& result) {
  const std::string message = std::to_string(static_cast<int>(result.kind)) + result.text;
  for (std::size_t sent = 0; sent < message.size();) {
    const ssize_t written = write(pipe_end, message.data() + sent, message.size() - sent);
    if (written <= 0) return;
    sent += static_cast<std::size_t>(written);
  }
}

// What arrives until the other end is closed. False when that takes too long.
bool receive(int pipe_end, steady::time_point until, std::string* message) {
  char part[4096];
  for (;;) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - steady::now()).count();
    pollfd end{pipe_end, POLLIN, 0};
    if (left <= 0 || poll(&end, 1, static_cast<int>(left)) == 0) return false;
    const ssize_t size = read(pipe_end, part, sizeof part);
    if (size <= 0) return true;
    message->append(part, static_cast<std::size_t>(size));
  }
}

[[noreturn]] void be_child(int pipe_end, const isolation& settings, const std::function<verdict()>& check) {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  for (const char* variable :
       {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME", "TMPDIR"}) {
    setenv(variable, settings.home.c_str(), 1);
  }
  if (!settings.verbose) {
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    close(nowhere);
  }
  send(pipe_end, check());
  // Without the module's own exit routines: a check that unloads it has seen to them.
  _exit(0);
}

}  // namespace

verdict run_isolated(const isolation& settings, const std::function<verdict()>& check) {
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return {verdict_kind::fail, "no pipe for the check's process"};
  const pid_t child = fork();
  if (child == 0) {
    close(ends[0]);
    be_child(ends[1], settings, check);
  }
  close(ends[1]);
  if (child < 0) {
    close(ends[0]);
    return {verdict_kind::fail, "no process for the check"};
  }
  std::string message;
  const auto time = std::chrono::duration_cast<steady::duration>(std::chrono::duration<double>(settings.seconds));
  const bool is_in_time = receive(ends[0], steady::now() + time, &message);
  close(ends[0]);
  if (!is_in_time) kill(child, SIGKILL);
  int status = 0;
  waitpid(child, &status, 0);
  if (!is_in_time) {
    return {verdict_kind::fail, "not done after " + std::to_string(static_cast<int>(settings.seconds)) + " s"};
  }
  if (WIFSIGNALED(status)) return {verdict_kind::fail, std::string("crashed: ") + strsignal(WTERMSIG(status))};
  if (message.empty()) return {verdict_kind::fail, "ended with status " + std::to_string(WEXITSTATUS(status))};
  return {static_cast<verdict_kind>(message[0] - '0'), message.substr(1)};
}
