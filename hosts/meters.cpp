// MIT License. Peak, clipping and loudness of a stereo signal.
#include "hosts/meters.h"

#include <algorithm>
#include <cmath>
#include <new>

meters::meters(int rate_hz) : loudness_(ebur128_init(2, static_cast<unsigned long>(rate_hz), EBUR128_MODE_I)) {
  if (!loudness_) throw std::bad_alloc();
}

void meters::add(const float* left, const float* right, int count) {
  const auto frames = static_cast<std::size_t>(count);
  interleaved_.resize(2 * frames);
  for (std::size_t i = 0; i < frames; ++i) {
    interleaved_[2 * i] = left[i];
    interleaved_[2 * i + 1] = right[i];
  }
  for (const float sample : interleaved_) {
    const float magnitude = std::abs(sample);
    peak_ = std::max(peak_, magnitude);
    above_ += magnitude > 1.0F ? 1 : 0;
  }
  if (ebur128_add_frames_float(loudness_.get(), interleaved_.data(), frames) != EBUR128_SUCCESS) throw std::bad_alloc();
}

double meters::loudness_lufs() const {
  double lufs = 0.0;
  return ebur128_loudness_global(loudness_.get(), &lufs) == EBUR128_SUCCESS ? lufs : -HUGE_VAL;
}
