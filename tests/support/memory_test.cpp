// MIT License. Tests of shared byte blocks and of the pools for them.
#include <gmock/gmock.h>

#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include "support/memory/data.h"
#include "support/memory/quick_allocator.h"

namespace {

using memory::byte_block;
using memory::child_data_reference;
using memory::data_reference;
using memory::quick_allocator_impl;

std::string text_of(const memory::data& block) {
  return {reinterpret_cast<const char*>(block.bytes()), static_cast<size_t>(block.size())};
}

TEST(ByteBlock, GrowsToTwiceTheRoomItNeedsAndIsTruncatedByReservingLess) {
  byte_block block;
  block.append("abc", 3);
  EXPECT_EQ(block.capacity(), 6U);
  block.append("def", 3);  // fills it exactly
  EXPECT_EQ(block.capacity(), 6U);
  block.append("g", 1);
  EXPECT_EQ(block.capacity(), 14U);
  EXPECT_EQ(text_of(block), "abcdefg");
  block.reserve(4);
  EXPECT_EQ(text_of(block), "abcd");
  block.reserve(0);
  EXPECT_EQ(block.size(), 0U);
  block.append("x", 1);
  EXPECT_EQ(text_of(block), "x");
}

TEST(ByteBlock, LivesAsLongAsAWindowOnIt) {
  data_reference window;
  {
    const memory::reference<byte_block> block(new byte_block);
    block->append("0123456789", 10);
    const data_reference half(new child_data_reference(block, block->bytes() + 2, 6));
    window = data_reference(new child_data_reference(half, half->bytes() + 1, 2));
    EXPECT_EQ(memory::end_of_owner(*window), block->bytes() + 10);
  }
  EXPECT_EQ(text_of(*window), "34");
}

TEST(Pool, ServesEachSizeFromTheSmallestStandardPool) {
  for (const auto& [size, element_size] : std::vector<std::pair<size_t, size_t>>{
           {1, 16}, {16, 16}, {17, 32}, {64, 64}, {65, 128}, {129, 256}, {512, 512}, {1024, 1024}}) {
    EXPECT_EQ(memory::get_pool(size, 3, 5)->element_size(), element_size) << size;
    EXPECT_EQ(memory::get_pool(size, 3, 5), memory::get_pool(element_size, 1, 1)) << size;
  }
  const auto* const large = memory::get_pool(1025, 3, 1);
  EXPECT_EQ(large->element_size(), 1025U);
  EXPECT_EQ(large->stride(), 1040U);
  EXPECT_EQ(large->block_size(), 3 * 1040U + 16U);
  EXPECT_NE(memory::get_pool(1025, 3, 1), large);
}

TEST(Pool, GrowsByOneBlockWhenItIsExhausted) {
  quick_allocator_impl pool(20, 2, 0);
  EXPECT_EQ(pool.bytes_reserved(), 0U);
  std::vector<void*> elements{memory::pool_allocate(&pool), memory::pool_allocate(&pool)};
  EXPECT_EQ(pool.bytes_reserved(), 80U);
  EXPECT_EQ(pool.free_count(), 0U);
  elements.push_back(memory::pool_allocate(&pool));
  EXPECT_EQ(pool.bytes_reserved(), 160U);
  EXPECT_EQ(pool.free_count(), 1U);
  EXPECT_EQ(pool.bytes_in_use(), 60U);
  for (void* const element : elements) {
    EXPECT_EQ(reinterpret_cast<uintptr_t>(element) % 16, 0U);
    std::memset(element, 0xFF, 20);
    memory::pool_release(&pool, element);
  }
  EXPECT_EQ(pool.bytes_in_use(), 0U);
  EXPECT_EQ(pool.free_count(), 4U);
  EXPECT_EQ(pool.bytes_reserved(), 160U);
}

// Larger than the type whose pool it inherits.
struct pooled_base : memory::pooled<pooled_base> {
  virtual ~pooled_base() = default;
  int64_t number = 0;
};
struct larger : pooled_base {
  int64_t more[4] = {};
};

TEST(Pool, ServesOneTypeAndLeavesDerivedOnesToTheHeap) {
  auto* const pool = memory::get_pool(sizeof(pooled_base), 0, 0);
  const size_t before = pool->bytes_in_use();
  const std::unique_ptr<pooled_base> small(new pooled_base);
  EXPECT_EQ(pool->bytes_in_use(), before + pool->element_size());
  { const std::unique_ptr<pooled_base> large(new larger); }
  EXPECT_EQ(pool->bytes_in_use(), before + pool->element_size());
}

// An element belongs to one thread from its allocation to its release. Only two threads, as more than there are cores
// would mostly wait for each other: a ticket lock whose next holder sleeps holds up all the others.
TEST(PoolThreads, NeverShareAnElement) {
  quick_allocator_impl pool(32, 8, 1);
  std::atomic<bool> shared{false};
  const auto work = [&](uint64_t mark) {
    for (int round = 0; round < 500; ++round) {
      uint64_t* held[5];
      for (auto*& element : held) {
        element = static_cast<uint64_t*>(memory::pool_allocate(&pool));
        *element = mark;
      }
      for (auto* const element : held) {
        if (*element != mark) shared = true;
        memory::pool_release(&pool, element);
      }
    }
  };
  std::vector<std::thread> threads;
  for (uint64_t mark = 1; mark <= 2; ++mark) threads.emplace_back(work, mark);
  for (auto& thread : threads) thread.join();
  EXPECT_FALSE(shared);
  EXPECT_EQ(pool.bytes_in_use(), 0U);
  EXPECT_EQ(pool.free_count() * pool.stride(), pool.bytes_reserved() / pool.block_size() * 8 * 32);
}

}  // namespace
