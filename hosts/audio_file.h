// MIT License. Sound files: reading the voice, writing the result.
#pragma once

#include <sndfile.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hosts/partial_file.h"

struct sound_file_closer {
  void operator()(SNDFILE* file) const { sf_close(file); }
};
using sound_file = std::unique_ptr<SNDFILE, sound_file_closer>;

// The voice, read from start to end.
class voice_reader {
 public:
  // Throws failure for what isn't a readable sound file of 1 or 2 channels with at least one sample, and for rates
  // outside `lowest_rate_hz` to `highest_rate_hz`.
  explicit voice_reader(const std::string& path);

  int channels() const { return info_.channels; }
  int rate_hz() const { return info_.samplerate; }
  int64_t frames() const { return info_.frames; }

  // For a WAV file that is shorter than its header says, how much of it is missing; else empty.
  const std::string& complaint() const { return complaint_; }

  // Reads the next `count` samples of each channel, which have to be there.
  //   shapes    channels[2][count]; of a mono voice the second is left alone
  //   throws    failure when the file breaks off
  void read(std::array<float*, 2> channels, int count);

 private:
  std::string path_;
  SF_INFO info_{};
  sound_file file_;
  std::string complaint_;
  std::vector<float> interleaved_;
};

// Bounds of the voice's rate: below, speech is no longer understood; above, there are no recordings.
constexpr int lowest_rate_hz = 2000;
constexpr int highest_rate_hz = 768000;

enum class sample_format { pcm_24, float_32 };

// A stereo WAV file that appears under its name only when it is finished.
class wav_writer {
 public:
  // Throws failure when the place cannot be written to.
  wav_writer(const std::string& path, int rate_hz, sample_format format);

  // Appends `count` samples. In 24-bit files they are clipped at full scale. Throws failure, for a full disk say, or
  // when the file would outgrow the 4 GiB that its header can count.
  void write(const float* left, const float* right, int count);

  // Closes the file and gives it its name.
  void finish();

 private:
  std::string what_;  // how messages name it
  partial_file partial_;
  sound_file file_;  // closed before the partial file vanishes
  int64_t room_;     // samples per channel that still fit
  std::vector<float> interleaved_;
};
