// MIT License. An event that one thread waits for and another signals.
#pragma once

#include <cstdint>

#include "support/synchronization/system_handle.h"

namespace synchronization {

// An auto-reset event: a signal wakes one waiter. Without a waiter it is kept for the next one; further signals until
// then have no effect. Throws event_runtime_error when the system can't create the event or refuses a signal.
class event {
 public:
  event();
  ~event();
  event(const event&) = delete;
  event& operator=(const event&) = delete;

  void signal();

  // False when no signal came in time.
  bool wait(uint32_t milliseconds);

 private:
  system_handle handle_;
};

}  // namespace synchronization
