// MIT License. A value that several threads read and replace as a whole.
#pragma once

#include <mutex>
#include <utility>

// Not for the audio thread: both operations take a lock, for the time of one copy.
template <typename T>
class guarded {
 public:
  guarded() = default;
  explicit guarded(T value) : value_(std::move(value)) {}

  T get() const {
    const std::lock_guard guard(lock_);
    return value_;
  }
  void set(T value) {
    const std::lock_guard guard(lock_);
    std::swap(value_, value);
  }

 private:
  mutable std::mutex lock_;
  T value_;
};
