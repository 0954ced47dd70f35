// MIT License. Threads that are started explicitly.
#pragma once

#include <atomic>
#include <cstdint>

#include "support/synchronization/system_handle.h"

namespace synchronization {

// Base class of threads: a subclass implements run(). A new object isn't started and has a reference count of 1.
//
// The owner starts it at most once and waits for its end before releasing it.
class thread {
 public:
  virtual void run() = 0;
  // Called on the new thread, before and after run().
  virtual void on_start() {}
  virtual void on_end() {}
  virtual ~thread();

  thread(const thread&) = delete;
  thread& operator=(const thread&) = delete;

  // Throws err::runtime_error when the system can't create the thread.
  void start();
  // Waits without a time limit for the thread to end; returns at once when it wasn't started.
  void wait();
  // True from start() until wait() has returned.
  bool is_running() const { return running_; }

  void add_reference() { references_.fetch_add(1, std::memory_order_relaxed); }
  void release_reference() {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }

 protected:
  thread() = default;

 private:
  bool running_ = false;  // used by the owner alone
  system_handle handle_ = 0;
  std::atomic<uint32_t> references_{1};
};

// The body of the system's thread.
void run_thread(thread* started);

}  // namespace synchronization
