// MIT License. Sound files: reading the voice, writing the result.
#include "hosts/audio_file.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <system_error>

#include "hosts/failure.h"

namespace fs = std::filesystem;

constexpr int64_t most_wav_bytes = 0xffffffff;  // sizes in a WAV file have 32 bits
constexpr int64_t wav_header_bytes = 4096;      // more than libsndfile ever writes around the samples

static std::string system_text(int error) {
  return std::generic_category().message(error);
}

static std::string called(const std::string& path) {
  return "voice '" + path + "'";
}

// Sizes of a WAV file's samples in bytes: as its header has it, and as they are.
struct wav_size {
  int64_t promised = 0;
  int64_t present = 0;
};

// Zeros for other files, and for recordings of unknown length: who writes a WAV file into a pipe cannot come back to
// the header, and puts a size there that is next to the largest of 31 or 32 bits.
static wav_size wav_samples_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::array<unsigned char, 12> head{};
  const auto read = [&](std::size_t count) {
    return !!file.read(reinterpret_cast<char*>(head.data()), static_cast<std::streamsize>(count));
  };
  const auto has = [&](std::size_t at, const char* tag) { return std::memcmp(head.data() + at, tag, 4) == 0; };
  if (!read(12) || !has(0, "RIFF") || !has(8, "WAVE")) return {};
  while (read(8)) {
    const int64_t size = head[4] | head[5] << 8 | head[6] << 16 | int64_t{head[7]} << 24;
    if (!has(0, "data")) {
      file.seekg(size + size % 2, std::ios::cur);  // chunks begin at even places
      continue;
    }
    const bool is_unknown = (size >= 0x7ffff000 && size <= 0x80000000) || size >= 0xfffff000;
    const auto begin = static_cast<int64_t>(file.tellg());
    return is_unknown ? wav_size{} : wav_size{size, static_cast<int64_t>(fs::file_size(path)) - begin};
  }
  return {};
}

static void check_voice_place(const std::string& path) {
  std::error_code error;
  const auto status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) throw failure(called(path) + " doesn't exist");
  if (error) throw failure(called(path) + " cannot be read: " + error.message());
  if (!fs::is_regular_file(status)) throw failure(called(path) + " is no regular file");
  if (access(path.c_str(), R_OK) != 0) throw failure(called(path) + " cannot be read: " + system_text(errno));
  if (fs::file_size(path, error) == 0) throw failure(called(path) + " is empty");
}

voice_reader::voice_reader(const std::string& path) : path_(path) {
  check_voice_place(path);
  file_.reset(sf_open(path.c_str(), SFM_READ, &info_));
  const std::string name = called(path);
  if (!file_) throw failure(name + " is no sound file that can be read: " + sf_strerror(nullptr));
  if (info_.channels > 2) {
    throw failure(name + " has " + std::to_string(info_.channels) + " channels: possible are 1 and 2");
  }
  if (info_.samplerate < lowest_rate_hz || info_.samplerate > highest_rate_hz) {
    throw failure(name + " has a rate of " + std::to_string(info_.samplerate) + " Hz: possible are " +
                  std::to_string(lowest_rate_hz) + " to " + std::to_string(highest_rate_hz));
  }
  if (info_.frames <= 0) throw failure(name + " has no samples");
  if (const auto bytes = wav_samples_of(path); bytes.promised > bytes.present) {
    const double present = static_cast<double>(info_.frames) / info_.samplerate;
    const double promised = present * static_cast<double>(bytes.promised) / static_cast<double>(bytes.present);
    char seconds[96];
    std::snprintf(seconds, sizeof seconds, "%.2f of its %.2f s are missing", promised - present, promised);
    complaint_ = name + " is cut short: " + seconds;
  }
}

void voice_reader::read(std::array<float*, 2> channels, int count) {
  const auto stride = static_cast<std::size_t>(info_.channels);
  interleaved_.resize(static_cast<std::size_t>(count) * stride);
  if (sf_readf_float(file_.get(), interleaved_.data(), count) < count) {
    const bool is_known = sf_error(file_.get()) != SF_ERR_NO_ERROR;
    throw failure(called(path_) + (is_known ? std::string(" cannot be read to its end: ") + sf_strerror(file_.get())
                                            : " breaks off before its end"));
  }
  for (std::size_t channel = 0; channel < stride; ++channel) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
      channels[channel][i] = interleaved_[i * stride + channel];
    }
  }
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
