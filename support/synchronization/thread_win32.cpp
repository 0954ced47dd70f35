// MIT License. Threads on Windows.
#include <windows.h>

#include "support/err/exception.h"
#include "support/synchronization/thread.h"

namespace synchronization {

namespace {

DWORD WINAPI run_windows_thread(void* started) {
  run_thread(static_cast<thread*>(started));
  return 0;
}

}  // namespace

void thread::start() {
  HANDLE const started = CreateThread(nullptr, 0, run_windows_thread, this, 0, nullptr);
  if (started == nullptr) throw err::runtime_error("thread::start() cannot start a thread!");
  handle_ = reinterpret_cast<system_handle>(started);
  running_ = true;
}

void thread::wait() {
  if (!running_) return;
  WaitForSingleObject(reinterpret_cast<HANDLE>(handle_), INFINITE);
  running_ = false;
}

thread::~thread() {
  if (handle_ != 0) CloseHandle(reinterpret_cast<HANDLE>(handle_));
}

}  // namespace synchronization
