// MIT License. Sample rate conversion of a stream.
#include "hosts/voice/rate_converter.h"

#include <algorithm>
#include <string>

#include "hosts/effect/text.h"

namespace {

constexpr std::size_t piece_samples = 4096;  // of output per call, to bound the memory

// More than half the length of libsoxr's filters at this quality, in samples at the lower rate. Measured from 2000 to
// 192000 Hz, the impulse response falls below 1e-9 of its peak within 142 samples.
constexpr int64_t filter_reach_samples = 256;

void check(soxr_error_t error) {
  if (error != nullptr) throw failure(std::string("the rate cannot be converted: ") + error);
}

}  // namespace

rate_converter::rate_converter(int from_hz, int to_hz, int channels) : ready_(static_cast<std::size_t>(channels)) {
  if (from_hz == to_hz) return;
  const auto samples = soxr_io_spec(SOXR_FLOAT32_S, SOXR_FLOAT32_S);
  const auto quality = soxr_quality_spec(SOXR_VHQ, 0);
  soxr_error_t error = nullptr;
  soxr_.reset(soxr_create(from_hz, to_hz, static_cast<unsigned>(channels), &error, &samples, &quality, nullptr));
  check(error);
  reach_ = filter_reach_samples * from_hz / std::min(from_hz, to_hz);
}

const channel_samples& rate_converter::convert(const float* const* channels, int count) {
  const auto size = static_cast<std::size_t>(count);
  if (soxr_) {
    run({channels, channels + ready_.size()}, size);
  } else {
    for (std::size_t i = 0; i < ready_.size(); ++i) ready_[i].assign(channels[i], channels[i] + size);
  }
  return ready_;
}

const channel_samples& rate_converter::finish() {
  for (auto& channel : ready_) channel.clear();
  if (soxr_) run({}, 0);
  return ready_;
}

void rate_converter::run(std::vector<const float*> in, std::size_t count) {
  std::vector<float*> out(ready_.size());
  std::size_t done = 0;
  std::size_t used = 0;
  std::size_t made = 0;
  do {
    for (std::size_t i = 0; i < ready_.size(); ++i) {
      ready_[i].resize(done + piece_samples);
      out[i] = ready_[i].data() + done;
    }
    check(soxr_process(soxr_.get(), in.empty() ? nullptr : in.data(), count, &used, out.data(), piece_samples, &made));
    for (const float*& channel : in) channel += used;
    count -= used;
    done += made;
  } while (count > 0 || made == piece_samples);
  for (auto& channel : ready_) channel.resize(done);
}
