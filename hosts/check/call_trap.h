// MIT License. Counts the calls that have no place in a block of audio: heap, locks, waits, files.
#pragma once

#include <cstdint>
#include <string>

struct trapped_calls {
  int64_t heap = 0;   // allocations and releases, by malloc's family or new and delete
  int64_t locks = 0;  // mutexes and read-write locks taken; a try isn't a lock
  int64_t waits = 0;  // waits for a condition, a semaphore, a thread or a time
  int64_t files = 0;  // opened, read or written

  int64_t total() const { return heap + locks + waits + files; }
  trapped_calls operator-(const trapped_calls& earlier) const;
  // "3 heap, 1 lock"; "none" without any.
  std::string text() const;
};

// Whether this build can watch at all: not on Windows, and not under a sanitizer, which watches the heap itself.
bool can_trap_calls();

// All that has been counted so far, in every thread.
trapped_calls trapped_so_far();

// Begins or ends counting this thread's calls. Returns whether they were counted before.
bool set_call_trap(bool is_armed);

// The calls of this thread count while one lives.
class call_trap {
 public:
  call_trap() : was_armed_(set_call_trap(true)) {}
  ~call_trap() { set_call_trap(was_armed_); }
  call_trap(const call_trap&) = delete;
  call_trap& operator=(const call_trap&) = delete;

 private:
  bool was_armed_;
};

// The host's own part within a block, which doesn't count.
class call_trap_pause {
 public:
  call_trap_pause() : was_armed_(set_call_trap(false)) {}
  ~call_trap_pause() { set_call_trap(was_armed_); }
  call_trap_pause(const call_trap_pause&) = delete;
  call_trap_pause& operator=(const call_trap_pause&) = delete;

 private:
  bool was_armed_;
};
