// MIT License. Spin locks in one 32-bit word, free to construct, for sections of a few instructions.
#pragma once

#include <atomic>
#include <cstdint>

namespace synchronization {

// Lets threads in by the order in which they asked. Waiting spins, without a pause or a yield: the sections are short
// and the audio thread is among the waiters. Fewer than 65536 threads may wait at once.
class ticket_lock {
 public:
  void lock() {
    const auto ticket = static_cast<uint16_t>(word_.fetch_add(k_one_ticket, std::memory_order_relaxed) >> 16);
    while (static_cast<uint16_t>(word_.load(std::memory_order_acquire)) != ticket) {
    }
  }

  // By the thread that holds the lock, which alone writes the low half: it is counted up by itself, without a carry
  // into the tickets, and beside it tickets may be drawn at any moment.
  void unlock() {
    const uint32_t word = word_.load(std::memory_order_relaxed);
    const bool wraps = static_cast<uint16_t>(word) == 0xFFFF;
    word_.fetch_add(wraps ? 1U - k_one_ticket : 1U, std::memory_order_release);
  }

 private:
  static constexpr uint32_t k_one_ticket = 0x10000;

  std::atomic<uint32_t> word_{0};  // low half: tickets served; high half: tickets issued
};

}  // namespace synchronization
