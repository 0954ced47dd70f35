// MIT License. Events on Linux: an eventfd, whose counter a successful wait reads and so resets.
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <climits>

#include "support/synchronization/error.h"
#include "support/synchronization/event.h"

namespace synchronization {

event::event() : handle_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
  if (handle_ < 0) throw error::event_runtime_error("event::event() CreateEvent", static_cast<uint32_t>(errno));
}

event::~event() {
  close(static_cast<int>(handle_));
}

void event::signal() {
  if (eventfd_write(static_cast<int>(handle_), 1) == 0 || errno == EAGAIN)
    return;  // a full counter is signalled already
  throw error::event_runtime_error("CEvent::signal() ", static_cast<uint32_t>(errno));
}

bool event::wait(uint32_t milliseconds) {
  using std::chrono::steady_clock;
  const auto deadline = steady_clock::now() + std::chrono::milliseconds(milliseconds);
  for (;;) {
    eventfd_t count = 0;
    if (eventfd_read(static_cast<int>(handle_), &count) == 0) return true;
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - steady_clock::now()).count();
    if (left <= 0) return false;
    pollfd polled{static_cast<int>(handle_), POLLIN, 0};
    // An interruption is treated like a time-out.
    poll(&polled, 1, static_cast<int>(std::min<int64_t>(left, INT_MAX)));
  }
}

}  // namespace synchronization
