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

  // 1 or 2.
  int channels() const { return channels_; }
  // About the file, if it is cut short; else empty.
  const std::string& warning() const { return warning_; }

  // Writes the next `count` samples. A mono voice fills both channels.
  //   shapes   to[2][count]
  //   audio    no heap, no lock
  void next(float* const* to, int count);

 private:
  std::vector<float> samples_[2];
  std::size_t position_ = 0;
  int channels_;
  std::string warning_;
};
