// MIT License. A stream's way from the thread that makes it to the thread that writes it.
#include "hosts/render/piece_queue.h"

#include <utility>

namespace {

constexpr std::size_t most_pieces = 8;

}  // namespace

bool piece_queue::add(stream_piece piece) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return pieces_.size() < most_pieces || given_up_; });
  if (given_up_) return false;
  pieces_.push_back(std::move(piece));
  changed_.notify_all();
  return true;
}

void piece_queue::close() {
  const std::lock_guard lock(mutex_);
  closed_ = true;
  changed_.notify_all();
}

std::optional<stream_piece> piece_queue::take() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return !pieces_.empty() || closed_; });
  if (pieces_.empty()) return std::nullopt;
  stream_piece piece = std::move(pieces_.front());
  pieces_.pop_front();
  changed_.notify_all();
  return piece;
}

void piece_queue::give_up() {
  const std::lock_guard lock(mutex_);
  given_up_ = true;
  changed_.notify_all();
}
