// MIT License. Text of limited length without the heap, for signal handlers.
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace halvern {

// Holds up to `capacity` characters and a terminating zero. What doesn't fit is cut off.
template <size_t capacity>
class short_text {
 public:
  short_text& add(std::string_view text) noexcept {
    const size_t taken = std::min(text.size(), capacity - length_);
    std::copy_n(text.data(), taken, characters_.data() + length_);
    length_ += taken;
    characters_[length_] = 0;
    return *this;
  }

  // The number in decimal, with leading zeros up to `least_digits`, 10 at most.
  short_text& add(uint32_t number, size_t least_digits = 1) noexcept {
    char digits[10];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    const auto count = static_cast<size_t>(end - digits);
    if (count < least_digits) add(std::string_view("0000000000", least_digits - count));
    return add(std::string_view(digits, count));
  }

  void clear() noexcept { length_ = 0; }

  std::string_view view() const noexcept { return {characters_.data(), length_}; }
  const char* c_str() const noexcept { return characters_.data(); }

 private:
  std::array<char, capacity + 1> characters_{};
  size_t length_ = 0;
};

}  // namespace halvern
