// MIT License. Tests of the module in hosts that crash, starve or end without care: the process has to end.
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

#include "tests/plugin/own_log.h"
#include "tests/words/files.h"
#include "tests/words/temporary_folder.h"

namespace {

using testing::AnyOf;
using testing::Contains;
using testing::HasSubstr;

// What `timeout` ends with when a signal ended the process.
constexpr int alarm = 128 + SIGALRM;
constexpr int terminated = 128 + SIGTERM;

// A sanitizer reports a double free before the heap does, and needs descriptors for its own checks.
constexpr int sanitizer = 1;

// Each test has an application data folder of its own, in which the host's errors are kept, too.
class HostileHost : public testing::Test {
 protected:
  // The exit status of a host that does `deed`; 124 or 137 when it had to be killed after half a minute.
  //   settings   of the environment, as `env` takes them
  int end_of_host(const std::string& deed, const std::string& settings = "") const {
    const std::string line = "env " + (settings.empty() ? "XDG_DATA_HOME='" + folder_.path() + "'" : settings) +
                             " timeout --kill-after=1 30 '" KESREL_HOSTILE_HOST "' '" KESREL_MODULE_PATH "' " + deed +
                             " 2>'" + folder_.path("errors") + "'";
    const int status = std::system(line.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  std::string errors() const { return read_file(folder_.path("errors")); }

  long crashes() const { return logged_crashes(folder_.path()); }

  const temporary_folder folder_;
};

struct ending {
  const char* deed;
  std::vector<int> statuses;
  long crashes;

  friend void PrintTo(const ending& end, std::ostream* out) { *out << end.deed; }
};

class HostileDeed : public HostileHost, public testing::WithParamInterface<ending> {};

TEST_P(HostileDeed, LetsTheHostEnd) {
  const auto& [deed, statuses, logged] = GetParam();
  const int status = end_of_host(deed);
  EXPECT_THAT(statuses, Contains(status));
  EXPECT_EQ(crashes(), status == sanitizer ? 0 : logged);
}

INSTANTIATE_TEST_SUITE_P(Each, HostileDeed,
                         testing::Values(ending{"raise-illegal", {SIGILL}, 1},                  //
                                         ending{"raise-abort", {SIGABRT}, 1},                   //
                                         ending{"raise-float", {SIGFPE}, 1},                    //
                                         ending{"raise-segment", {SIGSEGV}, 1},                 //
                                         ending{"raise-terminate", {SIGTERM}, 1},               //
                                         ending{"free-twice", {SIGABRT, alarm, sanitizer}, 1},  //
                                         ending{"hang", {alarm}, 1},                            // after five seconds
                                         ending{"hang-and-terminate", {terminated}, 1},         // at once
                                         ending{"overflow", {SIGSEGV}, 1},                      //
                                         ending{"no-descriptors", {10, sanitizer}, 0},          //
                                         ending{"late", {12}, 0},                               //
                                         ending{"play-on", {14}, 0}));

TEST_F(HostileHost, EndsWhenItIsTerminatedWhileThreadsAllocate) {
  for (int round = 0; round < 5; ++round) EXPECT_THAT(end_of_host("terminate"), AnyOf(SIGTERM, alarm));
  EXPECT_EQ(crashes(), 5);
}

TEST_F(HostileHost, GetsAnEffectEvenWhereThereCanBeNoLog) {
  EXPECT_EQ(end_of_host("late", "--unset=XDG_DATA_HOME --unset=HOME"), 12);
  EXPECT_THAT(errors(), HasSubstr("get_user_app_support_path() cannot get the application data path!"));
  write_file(folder_.path("Quorvant"), "a file where the folder should be");
  EXPECT_EQ(end_of_host("late"), 12);
  EXPECT_THAT(errors(), HasSubstr("expected a folder but the found path refers to a file!"));
}

}  // namespace
