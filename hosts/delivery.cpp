// MIT License. What the effect sings, on its way into a file.
#include "hosts/delivery.h"

#include <algorithm>

void delivery::add(const float* left, const float* right, int count, int64_t end) {
  const float* const channels[2] = {left, right};
  write(converter_.convert(channels, count), end);
}

void delivery::write(const channel_samples& samples, int64_t end) {
  const auto count = static_cast<int64_t>(samples[0].size());
  const int64_t first = std::clamp<int64_t>(-position_, 0, count);
  const int64_t last = std::min(count, end - position_);
  position_ += count;
  if (last <= first) return;
  const float* const left = samples[0].data() + first;
  const float* const right = samples[1].data() + first;
  writer_.write(left, right, static_cast<int>(last - first));
  meters_.add(left, right, static_cast<int>(last - first));
}
