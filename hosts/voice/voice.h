// MIT License. The voice: its sound file, and the stream that the effect gets from it.
#pragma once

#include <sndfile.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hosts/voice/memory_sound.h"
#include "hosts/voice/rate_converter.h"

// Limits of the voice's rate: below, speech is unintelligible; above, nothing is recorded.
constexpr int lowest_rate_hz = 2000;
constexpr int highest_rate_hz = 768000;

// The voice's file, read from start to end.
class voice_reader {
 public:
  // Throws failure unless the file is a readable sound file with 1 or 2 channels, at least one sample, and a rate from
  // `lowest_rate_hz` to `highest_rate_hz`.
  explicit voice_reader(const std::string& path);
  // The same for a sound file in memory.
  //   name   how messages refer to it
  voice_reader(const std::string& name, std::string bytes);

  int channels() const { return info_.channels; }
  int rate_hz() const { return info_.samplerate; }
  int64_t frames() const { return info_.frames; }

  // How much is missing, if the file is a WAV file shorter than its header says; else empty.
  const std::string& warning() const { return warning_; }

  // Reads the next `count` samples of each channel; at least as many have to be left.
  //   shapes    channels[2][count]; a mono voice leaves the second unchanged
  //   throws    failure when the file ends early
  void read(std::array<float*, 2> channels, int count);
  // Reads on from the start. Throws failure when the file can't be.
  void rewind();

 private:
  struct closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };

  void check_content() const;

  std::string called_;  // in messages
  SF_INFO info_{};
  std::unique_ptr<memory_sound> memory_;  // null for a file on disk
  std::unique_ptr<SNDFILE, closer> file_;
  std::string warning_;
  std::vector<float> interleaved_;
};

// The share of a file's channels in the voice. A mono file has the left one alone.
struct channel_weights {
  float left = 1.0F;
  float right = 0.0F;
};

// The voice at the effect's rate, between leading silence and endless silence after it.
class voice_feed {
 public:
  //   silence_before   in samples at the voice's rate
  voice_feed(voice_reader* voice, channel_weights weights, int64_t silence_before, int rate_hz);

  // Writes the next `count` samples. Throws failure when the file ends early.
  void next(float* samples, int count);

 private:
  void convert_more();

  voice_reader& voice_;
  channel_weights weights_;
  int64_t position_;  // of the voice's next sample; negative in the leading silence
  rate_converter converter_;
  channel_samples piece_;                   // left and right as they are in the file
  const channel_samples* ready_ = nullptr;  // the converter's latest output
  std::size_t taken_ = 0;                   // samples of it that have been passed on
};
