// MIT License. The local clock on POSIX systems.
#include <ctime>

#include "support/log_record.h"

namespace halvern {

log_time local_log_time() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  tm local{};
  localtime_r(&now.tv_sec, &local);
  const auto unsigned_of = [](long value) { return static_cast<uint32_t>(value); };
  return {unsigned_of(local.tm_mday),          unsigned_of(local.tm_mon + 1), unsigned_of(local.tm_year + 1900),
          unsigned_of(local.tm_sec),           unsigned_of(local.tm_min),     unsigned_of(local.tm_hour),
          unsigned_of(now.tv_nsec / 1'000'000)};
}

}  // namespace halvern
