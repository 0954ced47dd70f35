// MIT License.
#include "hosts/report/jobs.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <vector>

namespace {

TEST(Jobs, AreDoneOnceEachOnAllThreads) {
  std::vector<std::atomic<int>> done(100);
  for_each_job(done.size(), 7, [&](std::size_t job) { ++done[job]; });
  for (const auto& count : done) EXPECT_EQ(count, 1);
}

TEST(Jobs, RethrowOnTheCallersThread) {
  const auto fail = [](std::size_t job) {
    if (job == 3) throw std::runtime_error("three");
  };
  EXPECT_THROW(for_each_job(10, 2, fail), std::runtime_error);
}

}  // namespace
