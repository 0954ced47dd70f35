// MIT License.
#include "tests/words/x_server.h"

#include <signal.h>
#include <stdlib.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <stdexcept>
#include <string>

namespace {

class x_server {
 public:
  x_server() {
    int ends[2];
    if (pipe(ends) != 0) throw std::runtime_error("no pipe for Xvfb");
    const std::string number_fd = std::to_string(ends[1]);
    process_ = fork();
    if (process_ == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);  // a test that crashes leaves nothing behind
      close(ends[0]);
      // It reports each display number that is in use before it takes a free one.
      if (freopen("/dev/null", "w", stderr) == nullptr) _exit(127);
      execlp("Xvfb", "Xvfb", "-displayfd", number_fd.c_str(), "-screen", "0", "1280x1024x24", "-screen", "1",
             "640x480x16", "-noreset", "-nolisten", "tcp", static_cast<char*>(nullptr));
      _exit(127);
    }
    close(ends[1]);
    std::string display = ":";
    for (char digit = 0; read(ends[0], &digit, 1) == 1 && digit != '\n';) display += digit;
    close(ends[0]);
    if (display.size() == 1) throw std::runtime_error("Xvfb doesn't start: is it installed?");
    setenv("DISPLAY", display.c_str(), 1);
  }
  x_server(const x_server&) = delete;
  x_server& operator=(const x_server&) = delete;
  ~x_server() {
    kill(process_, SIGTERM);
    waitpid(process_, nullptr, 0);
  }

 private:
  pid_t process_;
};

}  // namespace

void start_x_server() {
  static const x_server server;
}
