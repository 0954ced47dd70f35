// MIT License. Tests of the way from the effect's thread to the writing one.
#include "hosts/render/piece_queue.h"

#include <gtest/gtest.h>

#include <array>
#include <future>

namespace {

stream_piece numbered(int64_t number) {
  return {{static_cast<float>(number)}, {static_cast<float>(-number)}, number};
}

// Far more than the queue holds, so that each side waits for the other.
constexpr int64_t many = 5000;

TEST(PieceQueueBetweenThreads, PassesAllPiecesInOrder) {
  piece_queue queue;
  const auto maker = std::async(std::launch::async, [&queue] {
    for (int64_t i = 0; i < many; ++i) EXPECT_TRUE(queue.add(numbered(i)));
    queue.close();
  });
  int64_t expected = 0;
  while (const auto piece = queue.take()) {
    ASSERT_EQ(piece->end, expected);
    EXPECT_EQ(piece->left, numbered(expected).left);
    EXPECT_EQ(piece->right, numbered(expected).right);
    ++expected;
  }
  EXPECT_EQ(expected, many);
}

TEST(PieceQueueBetweenThreads, LetsAMakerGoThatWaitsWhenNobodyTakesMore) {
  piece_queue queue;
  auto maker = std::async(std::launch::async, [&queue] {
    int64_t added = 0;
    while (added < many && queue.add(numbered(added))) ++added;
    return added;
  });
  EXPECT_EQ(queue.take()->end, 0);
  queue.give_up();
  EXPECT_LT(maker.get(), many);
}

TEST(PieceQueueBetweenThreads, HasNoPieceForOneThatWaitsAfterTheLast) {
  piece_queue queue;
  auto taker = std::async(std::launch::async, [&queue] { return std::array{queue.take(), queue.take()}; });
  EXPECT_TRUE(queue.add(numbered(7)));
  queue.close();
  const auto [first, second] = taker.get();
  EXPECT_TRUE(first && first->end == 7);
  EXPECT_FALSE(second);
}

}  // namespace
