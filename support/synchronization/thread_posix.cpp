// MIT License. Threads on POSIX systems.
#include <pthread.h>

#include "support/err/exception.h"
#include "support/synchronization/thread.h"

namespace synchronization {

static_assert(sizeof(pthread_t) <= sizeof(system_handle));

namespace {

void* run_posix_thread(void* started) {
  run_thread(static_cast<thread*>(started));
  return nullptr;
}

}  // namespace

void thread::start() {
  pthread_t started{};
  if (pthread_create(&started, nullptr, run_posix_thread, this) != 0) {
    throw err::runtime_error("thread::start() cannot start a thread!");
  }
  handle_ = static_cast<system_handle>(started);
  running_ = true;
}

void thread::wait() {
  if (!running_) return;
  pthread_join(static_cast<pthread_t>(handle_), nullptr);
  handle_ = 0;  // joining has closed it
  running_ = false;
}

thread::~thread() {
  if (handle_ != 0) pthread_detach(static_cast<pthread_t>(handle_));
}

}  // namespace synchronization
