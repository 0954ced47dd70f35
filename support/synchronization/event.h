// MIT License. An event that one thread waits for and another one signals.
#pragma once

#include <cstdint>

#include "support/synchronization/system_handle.h"

namespace synchronization {

// Wakes one waiter for a signal and resets itself. A signal without a waiter is kept for the next one; further signals
// until then add nothing. Throws event_runtime_error when the system has no more events, or refuses a signal.
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
