// MIT License. The local clock on Windows.
#include <windows.h>

#include "support/log_record.h"

namespace halvern {

log_time local_log_time() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return {now.wDay, now.wMonth, now.wYear, now.wSecond, now.wMinute, now.wHour, now.wMilliseconds};
}

// The system clock already knows its zone, without files or the heap.
void remember_time_zone() {}

log_time crash_log_time() noexcept {
  return local_log_time();
}

}  // namespace halvern
