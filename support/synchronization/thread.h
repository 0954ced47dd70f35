// MIT License. Threads of one's own, which nothing starts by itself.
#pragma once

#include <atomic>
#include <cstdint>

#include "support/synchronization/system_handle.h"

namespace synchronization {

// A thread to be: a subclass says what it runs. Constructing one starts nothing, and counts one holder.
//
// The owner starts it at most once, and waits for its end before it lets the object go.
class thread {
 public:
  virtual void run() = 0;
  // Called on the new thread, before and after run().
  virtual void on_start() {}
  virtual void on_end() {}
  virtual ~thread();

  thread(const thread&) = delete;
  thread& operator=(const thread&) = delete;

  // Throws err::runtime_error when the system has no more threads.
  void start();
  // Waits without limit for the end of a started thread; returns at once when none was started.
  void wait();
  // Whether it was started and nobody has waited for its end yet.
  bool is_running() const { return running_; }

  void add_reference() { references_.fetch_add(1, std::memory_order_relaxed); }
  void release_reference() {
    if (references_.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
  }

 protected:
  thread() = default;

 private:
  bool running_ = false;  // the owner's
  system_handle handle_ = 0;
  std::atomic<uint32_t> references_{1};
};

// What the system's thread does.
void run_thread(thread* started);

}  // namespace synchronization
