// MIT License. A fair spin lock in one 32-bit word, for critical sections of a few instructions.
#pragma once

#include <atomic>
#include <cstdint>

namespace synchronization {

// Lets threads in by order of arrival. Waiting spins without pause or yield: the sections are short, and the audio
// thread may be among the waiters. Fewer than 65536 threads may wait at once.
class ticket_lock {
 public:
  void lock() {
    const auto ticket = static_cast<uint16_t>(word_.fetch_add(one_ticket, std::memory_order_relaxed) >> 16);
    while (static_cast<uint16_t>(word_.load(std::memory_order_acquire)) != ticket) {
    }
  }

  // Called by the thread that holds the lock, which alone writes the low half: it must not carry into the tickets in
  // the high half, which other threads may draw at any moment.
  void unlock() {
    const uint32_t word = word_.load(std::memory_order_relaxed);
    const bool wraps = static_cast<uint16_t>(word) == 0xFFFF;
    word_.fetch_add(wraps ? 1U - one_ticket : 1U, std::memory_order_release);
  }

 private:
  static constexpr uint32_t one_ticket = 0x10000;

  std::atomic<uint32_t> word_{0};  // low half: tickets served; high half: tickets issued
};

}  // namespace synchronization
