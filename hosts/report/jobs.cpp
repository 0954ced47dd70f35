// MIT License. Independent work on all cores.
#include "hosts/report/jobs.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

void for_each_job(std::size_t count, int threads, const std::function<void(std::size_t)>& work) {
  std::atomic<std::size_t> next{0};
  std::exception_ptr thrown;
  std::mutex throwing;
  const auto run = [&] {
    for (std::size_t job = next++; job < count; job = next++) {
      try {
        work(job);
      } catch (...) {
        const std::lock_guard lock(throwing);
        if (!thrown) thrown = std::current_exception();
        next = count;
      }
    }
  };
  const auto wanted = threads > 0 ? static_cast<std::size_t>(threads) : std::thread::hardware_concurrency();
  std::vector<std::thread> others(std::min(std::max<std::size_t>(wanted, 1), std::max<std::size_t>(count, 1)) - 1);
  for (auto& other : others) other = std::thread(run);
  run();
  for (auto& other : others) other.join();
  if (thrown) std::rethrow_exception(thrown);
}
