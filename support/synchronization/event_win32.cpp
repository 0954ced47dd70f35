// MIT License. Events on Windows.
#include <windows.h>

#include "support/synchronization/error.h"
#include "support/synchronization/event.h"

namespace synchronization {

event::event() : handle_(reinterpret_cast<system_handle>(CreateEventA(nullptr, FALSE, FALSE, nullptr))) {
  if (handle_ == 0) throw error::event_runtime_error("event::event() CreateEvent", GetLastError());
}

event::~event() {
  CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

void event::signal() {
  if (SetEvent(reinterpret_cast<HANDLE>(handle_)) == 0) {
    throw error::event_runtime_error("CEvent::signal() ", GetLastError());
  }
}

bool event::wait(uint32_t milliseconds) {
  return WaitForSingleObject(reinterpret_cast<HANDLE>(handle_), milliseconds) == WAIT_OBJECT_0;
}

}  // namespace synchronization
