// MIT License. The voice as the effect hears it.
#pragma once

#include <cstdint>
#include <string>

#include "hosts/audio_file.h"
#include "hosts/rate_converter.h"

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
