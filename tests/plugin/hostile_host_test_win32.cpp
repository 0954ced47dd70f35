// MIT License. Tests of the module in hosts that crash or end without care on Windows: the process has to end.
#include <gtest/gtest.h>
#include <process.h>

#include <csignal>
#include <ostream>
#include <string>

#include "tests/plugin/own_log.h"
#include "tests/words/temporary_folder.h"

namespace {

// The exit status of a host that does `deed`, with application data in `folder`.
intptr_t end_of_host(const std::string& deed, const temporary_folder& folder) {
  const std::string data_home = '"' + folder.path() + '"';
  intptr_t status = -1;
  for (int i = 0; i < 3 && status == -1; ++i) {  // now and then Wine can't start a program
    status = _spawnl(_P_WAIT, KESREL_HOSTILE_HOST, KESREL_HOSTILE_HOST, KESREL_MODULE_PATH, deed.c_str(),
                     data_home.c_str(), nullptr);
  }
  return status;
}

struct ending {
  const char* deed;
  intptr_t status;
  long crashes;

  friend void PrintTo(const ending& end, std::ostream* out) { *out << end.deed; }
};

class HostileDeed : public testing::TestWithParam<ending> {};

TEST_P(HostileDeed, LetsTheHostEnd) {
  const auto& [deed, status, crashes] = GetParam();
  const temporary_folder folder;
  EXPECT_EQ(end_of_host(deed, folder), status);
  EXPECT_EQ(logged_crashes(folder.path()), crashes);
}

INSTANTIATE_TEST_SUITE_P(Each, HostileDeed,
                         testing::Values(ending{"raise-abort", SIGABRT, 1},         //
                                         ending{"raise-float", SIGFPE, 1},          //
                                         ending{"raise-illegal", SIGILL, 1},        //
                                         ending{"raise-segment", SIGSEGV, 1},       //
                                         ending{"raise-terminate", SIGTERM, 1},     //
                                         ending{"read-nowhere", SIGSEGV, 1},        //
                                         ending{"unload", SIGILL, 1},               //
                                         ending{"hang", SIGTERM, 1},                // after five seconds
                                         ending{"hang-and-terminate", SIGTERM, 1},  // at once
                                         ending{"terminate", SIGTERM, 1},           //
                                         ending{"late", 12, 0},                     //
                                         ending{"play-on", 14, 0}));

}  // namespace
