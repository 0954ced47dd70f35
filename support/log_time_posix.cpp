// MIT License. The local clock on POSIX systems.
#include <atomic>
#include <chrono>
#include <ctime>

#include "support/log_record.h"

namespace halvern {

namespace {

std::atomic<std::chrono::seconds::rep> crash_utc_offset_s{0};

timespec time_now() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return now;
}

tm local_calendar(time_t time) {
  tm local{};
  localtime_r(&time, &local);
  return local;
}

template <typename Integer>
uint32_t unsigned_of(Integer value) {
  return static_cast<uint32_t>(value);
}

}  // namespace

log_time local_log_time() {
  const timespec now = time_now();
  const tm local = local_calendar(now.tv_sec);
  return {unsigned_of(local.tm_mday),          unsigned_of(local.tm_mon + 1), unsigned_of(local.tm_year + 1900),
          unsigned_of(local.tm_sec),           unsigned_of(local.tm_min),     unsigned_of(local.tm_hour),
          unsigned_of(now.tv_nsec / 1'000'000)};
}

void remember_time_zone() {
  crash_utc_offset_s.store(local_calendar(time_now().tv_sec).tm_gmtoff, std::memory_order_relaxed);
}

// The C library's calendar takes a lock and reads files, so this one is arithmetic alone.
log_time crash_log_time() noexcept {
  using namespace std::chrono;
  const timespec now = time_now();
  const sys_seconds local(seconds(now.tv_sec) + seconds(crash_utc_offset_s.load(std::memory_order_relaxed)));
  const sys_days today = floor<days>(local);
  const year_month_day date(today);
  const hh_mm_ss clock(local - today);
  return {static_cast<unsigned>(date.day()),    static_cast<unsigned>(date.month()),
          unsigned_of(int{date.year()}),        unsigned_of(clock.seconds().count()),
          unsigned_of(clock.minutes().count()), unsigned_of(clock.hours().count()),
          unsigned_of(now.tv_nsec / 1'000'000)};
}

}  // namespace halvern
