// MIT License. Streams of samples at another rate.
#pragma once

#include <soxr.h>

#include <cstdint>
#include <memory>
#include <vector>

using channel_samples = std::vector<std::vector<float>>;  // a vector per channel, all of one length

// Converts a stream by libsoxr at its best quality, in linear phase: flat up to 0.91 of the lower rate's half, nothing
// above that half. The first sample that comes out has the time of the first that goes in. Equal rates pass unchanged.
class rate_converter {
 public:
  rate_converter(int from_hz, int to_hz, int channels);

  // Takes the next `count` samples of each channel, all of them finite.
  //   returns   what is ready so far and hasn't been returned before, valid until the next call
  const channel_samples& convert(const float* const* channels, int count);
  // The remainder, with silence behind the last sample.
  const channel_samples& finish();

  // How far the filter looks around a sample, in samples of the stream that goes in.
  int64_t reach() const { return reach_; }

 private:
  struct closer {
    void operator()(soxr* handle) const { soxr_delete(handle); }
  };
  // Null pointers end the stream.
  void run(std::vector<const float*> in, std::size_t count);

  std::unique_ptr<soxr, closer> soxr_;  // null for equal rates
  int64_t reach_ = 0;
  channel_samples ready_;
};
