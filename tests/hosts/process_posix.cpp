// MIT License.
#include "tests/hosts/process_posix.h"

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>

// The program's log is in a temporary folder.
pid_t start(const arguments& words, const std::string& out, const std::string& error, const char* program) {
  static const temporary_folder log_folder;
  setenv("XDG_DATA_HOME", log_folder.path().c_str(), 1);
  arguments owned = words;
  owned.insert(owned.begin(), program);
  std::vector<char*> argv;
  for (auto& word : owned) argv.push_back(word.data());
  argv.push_back(nullptr);

  std::fflush(nullptr);  // or the child writes what the parent has buffered
  const pid_t process = fork();
  if (process != 0) return process;
  // The tests ignore SIGINT when a shell runs them in the background; the program must not inherit that.
  signal(SIGINT, SIG_DFL);
  const bool redirected = freopen("/dev/null", "r", stdin) != nullptr && freopen(out.c_str(), "w", stdout) != nullptr &&
                          freopen(error.c_str(), "w", stderr) != nullptr;
  if (redirected) execv(program, argv.data());
  _exit(127);
}

int status_of(pid_t process) {
  int status = 0;
  waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

outcome run(const arguments& words, const std::string& out, const char* program) {
  const temporary_folder output;
  const std::string out_file = out.empty() ? output.path("out") : out;
  const int status = status_of(start(words, out_file, output.path("error"), program));
  return {status, out.empty() ? read_file(out_file) : "", read_file(output.path("error"))};
}
