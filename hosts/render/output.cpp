// MIT License. The output: converted to the file's rate, measured and written.
#include "hosts/render/output.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <new>
#include <numbers>

#include "hosts/effect/interruption.h"
#include "hosts/effect/paths.h"
#include "hosts/effect/text.h"
#include "hosts/render/streams.h"
#include "hosts/render/terminal.h"

namespace {

constexpr int64_t most_wav_bytes = 0xffffffff;  // sizes in a WAV file have 32 bits
constexpr int64_t wav_header_bytes = 4096;      // more than libsndfile writes before and after the samples
constexpr double vorbis_quality = 0.6;          // some 190 kbit/s

// Fades `samples` out over `length` of them, from the index `start` on, which may be before the first.
void fade_out(int64_t start, int64_t length, std::vector<float>* samples) {
  for (auto i = std::max<int64_t>(start, 0); i < std::ssize(*samples); ++i) {
    const double share = static_cast<double>(i - start) / static_cast<double>(length);
    (*samples)[static_cast<std::size_t>(i)] *= static_cast<float>(0.5 + 0.5 * std::cos(std::numbers::pi * share));
  }
}

void interleave(const float* left, const float* right, int count, std::vector<float>* interleaved) {
  interleaved->resize(2 * static_cast<std::size_t>(count));
  for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
    (*interleaved)[2 * i] = left[i];
    (*interleaved)[2 * i + 1] = right[i];
  }
}

// Of a WAV file libsndfile doesn't read texts of more than 2045 bytes, and around those of 60 kB it writes a header
// that nothing can read.
std::string tag_of(const std::string& text) {
  constexpr std::size_t most = 1500;
  if (text.size() <= most) return text;
  std::size_t end = most;
  while (end > 0 && (text[end] & 0xC0) == 0x80) --end;  // not inside a UTF-8 character
  return text.substr(0, end) + "...";
}

// A name that is short, as the output's own may be the longest that the file system takes.
std::string spool_name(const std::string& output) {
  static std::atomic<int> number = 0;
  std::error_code error;
  const auto folder =
      output == stream_name ? std::filesystem::temp_directory_path(error) : path_of(output).parent_path();
  const std::u8string path = (folder / ("kesrel-render.loudness" + std::to_string(++number))).u8string();
  return {path.begin(), path.end()};
}

}  // namespace

SF_VIRTUAL_IO sound_writer::file_sound::calls() {
  SF_VIRTUAL_IO all{};
  all.get_filelen = [](void* user) -> sf_count_t {
    partial_file& written = *static_cast<file_sound*>(user)->file;
    const int64_t place = written.seek(0, SEEK_CUR);
    const int64_t length = written.seek(0, SEEK_END);
    written.seek(place, SEEK_SET);
    return length;
  };
  all.tell = [](void* user) -> sf_count_t { return static_cast<file_sound*>(user)->file->seek(0, SEEK_CUR); };
  all.seek = [](sf_count_t offset, int whence, void* user) -> sf_count_t {
    return static_cast<file_sound*>(user)->file->seek(offset, whence);
  };
  all.write = [](const void* source, sf_count_t count, void* user) -> sf_count_t {
    auto& sound = *static_cast<file_sound*>(user);
    try {
      sound.file->write({static_cast<const char*>(source), static_cast<std::size_t>(count)});
      return count;
    } catch (...) {  // libsndfile is C, through which no exception may pass
      if (!sound.error) sound.error = std::current_exception();
      return 0;
    }
  };
  return all;
}

void sound_writer::check() const {
  if (disk_.error) std::rethrow_exception(disk_.error);
}

sound_writer::sound_writer(const std::string& path, sound_format format, bool float_samples, int rate_hz,
                           const sound_tags& tags)
    : what_(path == stream_name ? "standard output" : "output '" + path + "'") {
  SF_INFO info{};
  info.samplerate = rate_hz;
  info.channels = 2;
  info.format = sndfile_format(format, float_samples);
  if (path == stream_name) {
    SF_VIRTUAL_IO calls = memory_sound::calls();
    file_.reset(sf_open_virtual(&calls, SFM_WRITE, &info, &memory_));
  } else {
    disk_.file.emplace(what_, path);
    SF_VIRTUAL_IO calls = file_sound::calls();
    file_.reset(sf_open_virtual(&calls, SFM_WRITE, &info, &disk_));
    check();
  }
  if (!file_) throw failure(what_ + " cannot be written: " + sf_strerror(nullptr));
  sf_command(file_.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
  sf_command(file_.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);  // it contains the time of day
  double quality = vorbis_quality;
  if (format == sound_format::vorbis) sf_command(file_.get(), SFC_SET_VBR_ENCODING_QUALITY, &quality, sizeof quality);
  // Tags are for players: a format that has none of a kind refuses it, and nothing is lost.
  sf_set_string(file_.get(), SF_STR_TITLE, tag_of(tags.title).c_str());
  sf_set_string(file_.get(), SF_STR_SOFTWARE, tags.software.c_str());
  sf_set_string(file_.get(), SF_STR_COMMENT, tag_of(tags.comment).c_str());
  room_ = format == sound_format::wav ? (most_wav_bytes - wav_header_bytes) / (2 * (float_samples ? 4 : 3))
                                      : std::numeric_limits<int64_t>::max();
}

void sound_writer::write(const float* left, const float* right, int count) {
  room_ -= count;
  if (room_ < 0) throw failure(what_ + " would exceed the 4 GiB that a WAV file can hold");
  interleave(left, right, count, &interleaved_);
  const bool is_written = sf_writef_float(file_.get(), interleaved_.data(), count) == count;
  check();
  if (!is_written) throw failure(what_ + " cannot be written: " + sf_strerror(file_.get()));
}

void sound_writer::finish() {
  const int unsaid = sf_error(file_.get());
  const int unclosed = sf_close(file_.release());
  check();
  for (const int error : {unsaid, unclosed}) {
    if (error != SF_ERR_NO_ERROR) throw failure(what_ + " cannot be written: " + sf_error_number(error));
  }
  if (disk_.file) {
    disk_.file->finish();
  } else {
    pass_all_bytes(stdout);
    print(memory_.bytes);
  }
}

meters::meters(int rate_hz, bool true_peak)
    : loudness_(ebur128_init(2, static_cast<unsigned long>(rate_hz),
                             EBUR128_MODE_I | (true_peak ? EBUR128_MODE_TRUE_PEAK : 0))) {
  if (!loudness_) throw std::bad_alloc();
}

void meters::add(const float* left, const float* right, int count) {
  const auto frames = static_cast<std::size_t>(count);
  interleave(left, right, count, &interleaved_);
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

double meters::true_peak() const {
  double largest = static_cast<double>(peak_);
  for (const unsigned channel : {0U, 1U}) {
    double peak = 0.0;
    if (ebur128_true_peak(loudness_.get(), channel, &peak) == EBUR128_SUCCESS) largest = std::max(largest, peak);
  }
  return largest;
}

void file_output::take(const float* left, const float* right, int count) {
  const auto scaled = [this, count](const float* samples, std::vector<float>* buffer) {
    if (gain_ == 1.0) return samples;
    buffer->resize(static_cast<std::size_t>(count));
    std::transform(samples, samples + count, buffer->begin(),
                   [this](float x) { return static_cast<float>(gain_ * static_cast<double>(x)); });
    return static_cast<const float*>(buffer->data());
  };
  left = scaled(left, &left_);
  right = scaled(right, &right_);
  writer_.write(left, right, count);
  meters_.add(left, right, count);
}

spool::spool(const std::string& path, int rate_hz)
    : what_("the file that holds output '" + path + "' until its loudness is known"),
      partial_(what_, spool_name(path)),
      meters_(rate_hz, true) {
  SF_INFO info{};
  info.samplerate = rate_hz;
  info.channels = 2;
  info.format = SF_FORMAT_RAW | SF_FORMAT_FLOAT;
  file_.reset(sf_open_fd(partial_.descriptor(), SFM_RDWR, &info, SF_FALSE));
  if (!file_) throw failure(what_ + " cannot be written: " + sf_strerror(nullptr));
}

void spool::take(const float* left, const float* right, int count) {
  interleave(left, right, count, &interleaved_);
  if (sf_writef_float(file_.get(), interleaved_.data(), count) != count) {
    throw failure(what_ + " cannot be written: " + sf_strerror(file_.get()));
  }
  meters_.add(left, right, count);
}

void spool::play(sample_sink* sink) {
  constexpr std::size_t piece = 4096;
  std::vector<float> left(piece);
  std::vector<float> right(piece);
  interleaved_.resize(2 * piece);
  if (sf_seek(file_.get(), 0, SEEK_SET) != 0) throw failure(what_ + " cannot be read");
  while (const auto count = sf_readf_float(file_.get(), interleaved_.data(), piece)) {
    check_interruption();
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
      left[i] = interleaved_[2 * i];
      right[i] = interleaved_[2 * i + 1];
    }
    sink->take(left.data(), right.data(), static_cast<int>(count));
  }
}

loudness_gain gain_to_loudness(double lufs, const meters& measured) {
  const double loudness = measured.loudness_lufs();
  if (std::isinf(loudness)) return {1.0, false};
  const double wanted = std::pow(10.0, (lufs - loudness) / 20.0);
  const double possible = highest_true_peak / measured.true_peak();
  return {std::min(wanted, possible), wanted > possible};
}

void delivery::add(const float* left, const float* right, int count, int64_t end) {
  const float* const channels[2] = {left, right};
  write(converter_.convert(channels, count), end);
}

void delivery::write(const channel_samples& samples, int64_t end) {
  const auto count = static_cast<int64_t>(samples[0].size());
  const int64_t first = std::clamp<int64_t>(-position_, 0, count);
  const int64_t last = std::min(count, end - position_);
  const int64_t position = position_ + first;
  position_ += count;
  if (last <= first) return;
  const float* kept[2] = {samples[0].data() + first, samples[1].data() + first};
  if (position_ > end - fade_) {
    for (const std::size_t channel : {0U, 1U}) {
      faded_[channel].assign(kept[channel], kept[channel] + (last - first));
      fade_out(end - fade_ - position, fade_, &faded_[channel]);
      kept[channel] = faded_[channel].data();
    }
  }
  sink_.take(kept[0], kept[1], static_cast<int>(last - first));
}
