// MIT License. The voice: its sound file, and the stream of it that the effect hears.
#pragma once

#include <sndfile.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hosts/render/rate_converter.h"

// Bounds of the voice's rate: below, speech is no longer understood; above, there are no recordings.
constexpr int k_lowest_rate_hz = 2000;
constexpr int k_highest_rate_hz = 768000;

// The voice, read from start to end.
class voice_reader {
 public:
  // Throws failure for what isn't a readable sound file of 1 or 2 channels with at least one sample, and for rates
  // outside `k_lowest_rate_hz` to `k_highest_rate_hz`.
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
  struct closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };

  std::string path_;
  SF_INFO info_{};
  std::unique_ptr<SNDFILE, closer> file_;
  std::string complaint_;
  std::vector<float> interleaved_;
};

// An endless stream at the effect's rate: silence, the voice, silence.
class voice_feed {
 public:
  //   silence_before   in samples of the voice's rate
  voice_feed(voice_reader* voice, int64_t silence_before, int rate_hz);

  // The next `count` samples. A mono voice is in both channels, for an effect that reads the second in spite of the
  // arrangement.
  //   shapes   channels[2][count]
  //   throws   failure when the file breaks off
  void next(float* const* channels, int count);

 private:
  void convert_more();

  voice_reader& voice_;
  int64_t position_;  // of the voice's next sample; below 0 in the silence
  rate_converter converter_;
  channel_samples piece_;
  const channel_samples* ready_ = nullptr;  // what the converter returned last
  std::size_t taken_ = 0;                   // samples of it that are out
};
