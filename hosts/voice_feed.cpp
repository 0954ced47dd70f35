// MIT License. The voice as the effect hears it.
#include "hosts/voice_feed.h"

#include <algorithm>
#include <cmath>

constexpr int piece_samples = 4096;

voice_feed::voice_feed(voice_reader* voice, int64_t silence_before, int rate_hz)
    : voice_(*voice),
      position_(-silence_before),
      converter_(voice->rate_hz(), rate_hz, voice->channels()),
      piece_(static_cast<std::size_t>(voice->channels())) {}

void voice_feed::next(float* const* channels, int count) {
  for (int filled = 0; filled < count;) {
    if (ready_ == nullptr || taken_ == ready_->front().size()) {
      convert_more();
      continue;
    }
    const auto some = std::min(static_cast<std::size_t>(count - filled), ready_->front().size() - taken_);
    std::copy_n(ready_->front().data() + taken_, some, channels[0] + filled);
    std::copy_n(ready_->back().data() + taken_, some, channels[1] + filled);
    taken_ += some;
    filled += static_cast<int>(some);
  }
}

void voice_feed::convert_more() {
  for (auto& channel : piece_) channel.assign(piece_samples, 0.0F);
  const int64_t lead = std::clamp<int64_t>(-position_, 0, piece_samples);
  const int64_t wanted = std::min(piece_samples - lead, voice_.frames() - position_ - lead);
  if (wanted > 0) voice_.read({piece_.front().data() + lead, piece_.back().data() + lead}, static_cast<int>(wanted));
  position_ += piece_samples;

  // The effect makes bad samples 0. The converter would smear them over their surroundings.
  const float* pointers[2] = {piece_.front().data(), piece_.back().data()};
  for (auto& channel : piece_) {
    std::replace_if(
        channel.begin(), channel.end(), [](float x) { return !std::isfinite(x); }, 0.0F);
  }
  ready_ = &converter_.convert(pointers, piece_samples);
  taken_ = 0;
}
