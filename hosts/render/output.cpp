// MIT License. The output: converted to the file's rate, measured and written.
#include "hosts/render/output.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "hosts/effect/text.h"

namespace {

constexpr int64_t most_wav_bytes = 0xffffffff;  // sizes in a WAV file have 32 bits
constexpr int64_t wav_header_bytes = 4096;      // more than libsndfile writes before and after the samples

}  // namespace

wav_writer::wav_writer(const std::string& path, int rate_hz, sample_format format)
    : what_("output '" + path + "'"), partial_(what_, path) {
  SF_INFO info{};
  info.samplerate = rate_hz;
  info.channels = 2;
  info.format = SF_FORMAT_WAV | (format == sample_format::pcm_24 ? SF_FORMAT_PCM_24 : SF_FORMAT_FLOAT);
  file_.reset(sf_open_fd(partial_.descriptor(), SFM_WRITE, &info, SF_FALSE));
  if (!file_) throw failure(what_ + " cannot be written: " + sf_strerror(nullptr));
  sf_command(file_.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
  sf_command(file_.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);  // it contains the time of day
  room_ = (most_wav_bytes - wav_header_bytes) / (2 * (format == sample_format::pcm_24 ? 3 : 4));
}

void wav_writer::write(const float* left, const float* right, int count) {
  room_ -= count;
  if (room_ < 0) throw failure(what_ + " would exceed the 4 GiB that a WAV file can hold");
  interleaved_.resize(2 * static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    interleaved_[2 * i] = left[i];
    interleaved_[2 * i + 1] = right[i];
  }
  if (sf_writef_float(file_.get(), interleaved_.data(), count) != count) {
    throw failure(what_ + " cannot be written: " + sf_strerror(file_.get()));
  }
}

void wav_writer::finish() {
  const int unsaid = sf_error(file_.get());
  const int unclosed = sf_close(file_.release());
  for (const int error : {unsaid, unclosed}) {
    if (error != SF_ERR_NO_ERROR) throw failure(what_ + " cannot be written: " + sf_error_number(error));
  }
  partial_.finish();
}

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
