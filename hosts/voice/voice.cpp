// MIT License. The voice: its sound file, and the stream that the effect gets from it.
#include "hosts/voice/voice.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>
#include <utility>

#include "hosts/effect/paths.h"
#include "hosts/effect/text.h"
#include "hosts/voice/sound_file.h"

namespace fs = std::filesystem;

namespace {

std::string system_text(int error) {
  return std::generic_category().message(error);
}

std::string called(const std::string& path) {
  return "voice '" + path + "'";
}

// Size of a WAV file's samples in bytes: according to the header, and in the file.
struct wav_size {
  int64_t promised = 0;
  int64_t present = 0;
};

// Zeros for other files, and for recordings of unknown length: a program that writes a WAV file into a pipe cannot go
// back to the header, and puts a size close to the largest of 31 or 32 bits there.
//   bytes   of the whole file
wav_size wav_samples_of(std::istream& file, int64_t bytes) {
  std::array<unsigned char, 12> head{};
  const auto read = [&](std::size_t count) {
    return !!file.read(reinterpret_cast<char*>(head.data()), static_cast<std::streamsize>(count));
  };
  const auto has = [&](std::size_t at, const char* tag) { return std::memcmp(head.data() + at, tag, 4) == 0; };
  if (!read(12) || !has(0, "RIFF") || !has(8, "WAVE")) return {};
  while (read(8)) {
    const int64_t size = head[4] | head[5] << 8 | head[6] << 16 | int64_t{head[7]} << 24;
    if (!has(0, "data")) {
      file.seekg(size + size % 2, std::ios::cur);  // chunks start at even offsets
      continue;
    }
    const bool is_unknown = (size >= 0x7ffff000 && size <= 0x80000000) || size >= 0xfffff000;
    const auto begin = static_cast<int64_t>(file.tellg());
    return is_unknown ? wav_size{} : wav_size{size, bytes - begin};
  }
  return {};
}

// Empty when nothing is missing.
std::string warning_of(const std::string& called, const SF_INFO& info, const wav_size& bytes) {
  if (bytes.promised <= bytes.present) return {};
  const double present = static_cast<double>(info.frames) / info.samplerate;
  const double promised = present * static_cast<double>(bytes.promised) / static_cast<double>(bytes.present);
  char seconds[96];
  std::snprintf(seconds, sizeof seconds, "%.2f of its %.2f s are missing", promised - present, promised);
  return called + " is cut short: " + seconds;
}

void check_readable(const std::string& path) {
  std::error_code error;
  const fs::path place = path_of(path);
  const auto status = fs::status(place, error);
  if (status.type() == fs::file_type::not_found) throw failure(called(path) + " doesn't exist");
  if (error) throw failure(called(path) + " cannot be read: " + error.message());
  if (!fs::is_regular_file(status)) throw failure(called(path) + " is no regular file");
  errno = 0;
  if (!std::ifstream(place)) throw failure(called(path) + " cannot be read: " + system_text(errno));
  if (fs::file_size(place, error) == 0) throw failure(called(path) + " is empty");
}

constexpr int piece_samples = 4096;

}  // namespace

voice_reader::voice_reader(const std::string& path) : called_(called(path)) {
  check_readable(path);
  file_.reset(open_sound_file(path_of(path), &info_));
  check_content();
  std::ifstream file(path_of(path), std::ios::binary);
  warning_ = warning_of(called_, info_, wav_samples_of(file, static_cast<int64_t>(fs::file_size(path_of(path)))));
}

voice_reader::voice_reader(const std::string& name, std::string bytes) : called_("voice " + name) {
  if (bytes.empty()) throw failure(called_ + " is empty");
  const auto size = static_cast<int64_t>(bytes.size());
  std::istringstream stream(std::move(bytes));
  const wav_size samples = wav_samples_of(stream, size);
  memory_.reset(new memory_sound{std::move(stream).str()});
  SF_VIRTUAL_IO calls = memory_sound::calls();
  file_.reset(sf_open_virtual(&calls, SFM_READ, &info_, memory_.get()));
  check_content();
  warning_ = warning_of(called_, info_, samples);
}

void voice_reader::check_content() const {
  if (!file_) throw failure(called_ + " is no sound file that can be read: " + sf_strerror(nullptr));
  if (info_.channels > 2) {
    throw failure(called_ + " has " + std::to_string(info_.channels) + " channels: possible are 1 and 2");
  }
  if (info_.samplerate < lowest_rate_hz || info_.samplerate > highest_rate_hz) {
    throw failure(called_ + " has a rate of " + std::to_string(info_.samplerate) + " Hz: possible are " +
                  std::to_string(lowest_rate_hz) + " to " + std::to_string(highest_rate_hz));
  }
  if (info_.frames <= 0) throw failure(called_ + " has no samples");
}

void voice_reader::read(std::array<float*, 2> channels, int count) {
  const auto stride = static_cast<std::size_t>(info_.channels);
  interleaved_.resize(static_cast<std::size_t>(count) * stride);
  if (sf_readf_float(file_.get(), interleaved_.data(), count) < count) {
    const bool is_known = sf_error(file_.get()) != SF_ERR_NO_ERROR;
    throw failure(called_ + (is_known ? std::string(" cannot be read to its end: ") + sf_strerror(file_.get())
                                      : " breaks off before its end"));
  }
  for (std::size_t channel = 0; channel < stride; ++channel) {
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
      channels[channel][i] = interleaved_[i * stride + channel];
    }
  }
}

void voice_reader::rewind() {
  if (sf_seek(file_.get(), 0, SEEK_SET) != 0) throw failure(called_ + " cannot be read twice");
}

voice_feed::voice_feed(voice_reader* voice, channel_weights weights, int64_t silence_before, int rate_hz)
    : voice_(*voice),
      weights_(weights),
      position_(-silence_before),
      converter_(voice->rate_hz(), rate_hz, 1),
      piece_(2) {}

void voice_feed::next(float* samples, int count) {
  for (int filled = 0; filled < count;) {
    if (ready_ == nullptr || taken_ == ready_->front().size()) {
      convert_more();
      continue;
    }
    const auto some = std::min(static_cast<std::size_t>(count - filled), ready_->front().size() - taken_);
    std::copy_n(ready_->front().data() + taken_, some, samples + filled);
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

  // The effect replaces NaN and infinite samples by 0. The converter would spread them over their neighbours.
  for (auto& channel : piece_) {
    std::replace_if(
        channel.begin(), channel.end(), [](float x) { return !std::isfinite(x); }, 0.0F);
  }
  std::vector<float>& mono = piece_.front();
  for (std::size_t i = 0; i < mono.size(); ++i) mono[i] = weights_.left * mono[i] + weights_.right * piece_.back()[i];
  const float* const channel = mono.data();
  ready_ = &converter_.convert(&channel, piece_samples);
  taken_ = 0;
}
