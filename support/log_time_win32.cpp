// MIT License. The local clock on Windows.
#include <windows.h>

#include "support/log_record.h"

namespace halvern {

log_time local_log_time() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return {now.wDay, now.wMonth, now.wYear, now.wSecond, now.wMinute, now.wHour, now.wMilliseconds};
}

}  // namespace halvern
