// MIT License. The read and write form of the ticket lock.
#pragma once

#include <atomic>
#include <cstdint>

namespace synchronization {

// Readers share, a writer is alone, and all enter in the order of their tickets: a reader who asks behind a waiting
// writer waits, too. Fewer than 256 threads may wait at once. Waiting spins.
class shared_ticket_lock {
 public:
  // The next reader may enter as soon as this one has.
  void lock_shared() {
    const uint8_t ticket = draw_ticket();
    wait_until_served(k_readers_byte, ticket);
    count_up(k_readers_byte);
  }
  void unlock_shared() { count_up(k_writers_byte); }

  // A writer enters when everybody before has left.
  void lock() {
    const uint8_t ticket = draw_ticket();
    wait_until_served(k_writers_byte, ticket);
  }
  void unlock() {
    count_up(k_readers_byte);
    count_up(k_writers_byte);
  }

 private:
  // Places in the word, as shifts. Each byte holds the first ticket that may enter as a reader or as a writer.
  static constexpr uint32_t k_writers_byte = 0;
  static constexpr uint32_t k_readers_byte = 8;
  static constexpr uint32_t k_tickets = 16;

  uint8_t draw_ticket() {
    return static_cast<uint8_t>(word_.fetch_add(1U << k_tickets, std::memory_order_relaxed) >> k_tickets);
  }

  void wait_until_served(uint32_t byte, uint8_t ticket) const {
    while (static_cast<uint8_t>(word_.load(std::memory_order_acquire) >> byte) != ticket) {
    }
  }

  // Other threads change the other bytes meanwhile. A byte that wraps carries nothing into its neighbour.
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
