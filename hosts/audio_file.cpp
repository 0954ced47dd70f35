// MIT License. Sound files: reading the voice, writing the result.
#include "hosts/audio_file.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "hosts/failure.h"

namespace fs = std::filesystem;

constexpr int64_t most_wav_bytes = 0xffffffff;  // sizes in a WAV file have 32 bits
constexpr int64_t wav_header_bytes = 4096;      // more than libsndfile ever writes around the samples

static std::string system_text(int error) {
  return std::generic_category().message(error);
}

static void check_voice_place(const std::string& path) {
  std::error_code error;
  const auto status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) throw failure("voice '" + path + "' doesn't exist");
  if (error) throw failure("voice '" + path + "' cannot be read: " + error.message());
  if (!fs::is_regular_file(status)) throw failure("voice '" + path + "' is no regular file");
  if (access(path.c_str(), R_OK) != 0) throw failure("voice '" + path + "' cannot be read: " + system_text(errno));
  if (fs::file_size(path, error) == 0) throw failure("voice '" + path + "' is empty");
}

voice_reader::voice_reader(const std::string& path) : path_(path) {
  check_voice_place(path);
  file_.reset(sf_open(path.c_str(), SFM_READ, &info_));
  const std::string name = "voice '" + path + "'";
  if (!file_) throw failure(name + " is no sound file that can be read: " + sf_strerror(nullptr));
  if (info_.channels > 2) {
    throw failure(name + " has " + std::to_string(info_.channels) + " channels: possible are 1 and 2");
  }
  if (info_.samplerate < lowest_rate_hz || info_.samplerate > highest_rate_hz) {
    throw failure(name + " has a rate of " + std::to_string(info_.samplerate) + " Hz: possible are " +
                  std::to_string(lowest_rate_hz) + " to " + std::to_string(highest_rate_hz));
  }
  if (info_.frames <= 0) throw failure(name + " has no samples");
}

int64_t voice_reader::read(float* const* channels, int count) {
  const auto stride = static_cast<std::size_t>(info_.channels);
  interleaved_.assign(static_cast<std::size_t>(count) * stride, 0.0F);
  const sf_count_t got = sf_readf_float(file_.get(), interleaved_.data(), count);
  if (got < count && sf_error(file_.get()) != SF_ERR_NO_ERROR) {
    throw failure("voice '" + path_ + "' cannot be read to its end: " + sf_strerror(file_.get()));
  }
  for (std::size_t channel = 0; channel < stride; ++channel) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
      channels[channel][i] = interleaved_[i * stride + channel];
    }
  }
  return got;
}

wav_writer::wav_writer(const std::string& path, int rate_hz, sample_format format)
    : what_("output '" + path + "'"), partial_(what_, path) {
  SF_INFO info{};
  info.samplerate = rate_hz;
  info.channels = 2;
  info.format = SF_FORMAT_WAV | (format == sample_format::pcm_24 ? SF_FORMAT_PCM_24 : SF_FORMAT_FLOAT);
  file_.reset(sf_open_fd(partial_.descriptor(), SFM_WRITE, &info, SF_FALSE));
  if (!file_) throw failure(what_ + " cannot be written: " + sf_strerror(nullptr));
  sf_command(file_.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
  sf_command(file_.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);  // it holds the time of day
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
