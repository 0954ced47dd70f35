// MIT License. The voice, repeated without end.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// A voice in memory at the effect's rate. A pause follows each time it is played.
class looped_voice {
 public:
  // Reads the sound file at `path`, or the demo voice when that is empty.
  //   throws   failure when it cannot be read, and when it is longer than ten minutes
  explicit looped_voice(const std::string& path);

  // About the file, if it is cut short; else empty.
  const std::string& warning() const { return warning_; }

  // Writes the next `count` samples, to both channels. Of a stereo file they are what choose_channels() finds.
  //   shapes   to[2][count]
  //   audio    no heap, no lock
  void next(float* const* to, int count);

 private:
  std::vector<float> samples_;
  std::size_t position_ = 0;
  std::string warning_;
};
