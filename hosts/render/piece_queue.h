// MIT License. A stream's way from the thread that makes it to the thread that writes it.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

struct stream_piece {
  std::vector<float> left;
  std::vector<float> right;
  int64_t end = 0;  // where the stream ends, as far as is known with this piece
};

// One thread adds pieces, and another takes them in the same order. Either may give up.
class piece_queue {
 public:
  // Waits while the queue is full. Returns false when the other side has given up.
  bool add(stream_piece piece);
  // No further piece comes.
  void close();

  // The next piece, as soon as there is one; none after the last.
  std::optional<stream_piece> take();
  // No further piece is taken.
  void give_up();

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<stream_piece> pieces_;
  bool closed_ = false;
  bool given_up_ = false;
};
