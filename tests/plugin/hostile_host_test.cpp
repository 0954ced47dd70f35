// MIT License. Tests of the module in hosts that crash, starve or end without care: the process must always end.
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "tests/plugin/own_log.h"
#include "tests/words/files.h"
#include "tests/words/temporary_folder.h"

namespace {

using testing::AnyOf;
using testing::HasSubstr;

// Exit statuses besides those that hostile_host.cpp names.
constexpr int k_alarm = 128 + SIGALRM;  // `timeout` answers so for a process that the alarm ended
constexpr int k_address_sanitizer = 1;  // finds a double free before the heap does
constexpr int k_thread_sanitizer = 66;

// Each test has an application data folder of its own, in which the host's errors are kept, too.
class HostileHost : public testing::Test {
 protected:
  // What a host that does `deed` ends with; 124 or 137 when it has to be ended from outside after half a minute.
  //   settings   of the environment, as env takes them
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

TEST_F(HostileHost, EndsWhenItsHeapIsBroken) {
  const int status = end_of_host("free-twice");
  EXPECT_THAT(status, AnyOf(SIGABRT, k_alarm, k_address_sanitizer, k_thread_sanitizer));
  const bool sanitized = status == k_address_sanitizer || status == k_thread_sanitizer;
  EXPECT_EQ(crashes(), sanitized ? 0 : 1);
}

TEST_F(HostileHost, EndsWhenItsStackOverflows) {
  EXPECT_EQ(end_of_host("overflow"), SIGSEGV);
  EXPECT_EQ(crashes(), 1);
}

TEST_F(HostileHost, EndsWhenItIsTerminatedWhileThreadsAllocate) {
  for (int round = 0; round < 5; ++round) EXPECT_THAT(end_of_host("terminate"), AnyOf(SIGTERM, k_alarm));
  EXPECT_EQ(crashes(), 5);
}

TEST_F(HostileHost, LoadsTheEffectWithoutADescriptorLeft) {
  EXPECT_EQ(end_of_host("no-descriptors"), 10);
}

TEST_F(HostileHost, MayUseEffectsFromItsLastExitRoutine) {
  EXPECT_EQ(end_of_host("late"), 12);
}

TEST_F(HostileHost, MayPlayOnWhileItExits) {
  EXPECT_EQ(end_of_host("play-on"), 14);
}

TEST_F(HostileHost, GetsAnEffectWhereNoLogCanBeKept) {
  EXPECT_EQ(end_of_host("late", "--unset=XDG_DATA_HOME --unset=HOME"), 12);
  EXPECT_THAT(errors(), HasSubstr("get_user_app_support_path() cannot get the application data path!"));
  write_file(folder_.path("Quorvant"), "a file in the folder's place");
  EXPECT_EQ(end_of_host("late"), 12);
  EXPECT_THAT(errors(), HasSubstr("expected a folder but the found path refers to a file!"));
}

}  // namespace
