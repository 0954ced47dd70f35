// MIT License. Sample rate conversion of a stream.
#pragma once

#include <soxr.h>

#include <cstdint>
#include <memory>
#include <vector>

using channel_samples = std::vector<std::vector<float>>;  // a vector per channel, all of one length

// Converts a stream by libsoxr at its best quality, with linear phase: flat up to 0.91 of the lower Nyquist frequency,
// nothing above it. The delay is compensated: the first output sample has the time of the first input sample. Equal
// rates pass the samples through unchanged.
class rate_converter {
 public:
  rate_converter(int from_hz, int to_hz, int channels);

  // Takes the next `count` samples of each channel, all of them finite.
  //   returns   the output that has become available, valid until the next call
  const channel_samples& convert(const float* const* channels, int count);
  // The rest of the output, as if silence followed the last sample.
  const channel_samples& finish();

  // How far the filter looks before and after a sample, in input samples.
  int64_t reach() const { return reach_; }

 private:
  struct closer {
    void operator()(soxr* handle) const { soxr_delete(handle); }
  };
  // No channels in `in` end the stream.
  void run(std::vector<const float*> in, std::size_t count);

  std::unique_ptr<soxr, closer> soxr_;  // null for equal rates
  int64_t reach_ = 0;
  channel_samples ready_;
};
