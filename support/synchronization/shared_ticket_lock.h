// MIT License. A readers-writer ticket lock.
#pragma once

#include <atomic>
#include <cstdint>

namespace synchronization {

// Readers share, writers are exclusive, and all enter in ticket order: a reader that arrives after a waiting writer
// waits too. Fewer than 256 threads may wait at once. Waiting spins.
class shared_ticket_lock {
 public:
  // Lets the next reader enter too.
  void lock_shared() {
    const uint8_t ticket = draw_ticket();
    wait_until_served(readers_byte, ticket);
    count_up(readers_byte);
  }
  void unlock_shared() { count_up(writers_byte); }

  // Enters when all earlier tickets have left.
  void lock() {
    const uint8_t ticket = draw_ticket();
    wait_until_served(writers_byte, ticket);
  }
  void unlock() {
    count_up(readers_byte);
    count_up(writers_byte);
  }

 private:
  // Positions in the word, as shifts. The first two bytes hold the ticket that may enter as a writer and as a reader.
  static constexpr uint32_t writers_byte = 0;
  static constexpr uint32_t readers_byte = 8;
  static constexpr uint32_t tickets_byte = 16;

  uint8_t draw_ticket() {
    return static_cast<uint8_t>(word_.fetch_add(1U << tickets_byte, std::memory_order_relaxed) >> tickets_byte);
  }

  void wait_until_served(uint32_t byte, uint8_t ticket) const {
    while (static_cast<uint8_t>(word_.load(std::memory_order_acquire) >> byte) != ticket) {
    }
  }

  // Other threads change the other bytes meanwhile. A byte that wraps must not carry into its neighbour.
  void count_up(uint32_t byte) {
    uint32_t word = word_.load(std::memory_order_relaxed);
    uint32_t counted = 0;
    do {
      const uint32_t count = (word >> byte) + 1;
      counted = (word & ~(0xFFU << byte)) | ((count & 0xFFU) << byte);
    } while (!word_.compare_exchange_weak(word, counted, std::memory_order_acq_rel, std::memory_order_relaxed));
  }

  std::atomic<uint32_t> word_{0};
};

}  // namespace synchronization
