// MIT License. What the effect sings, on its way into a file.
#pragma once

#include <cstdint>

#include "hosts/audio_file.h"
#include "hosts/meters.h"
#include "hosts/rate_converter.h"

// Converts, measures and writes a stream.
class delivery {
 public:
  //   skipped   samples of the file's rate that are left out at the head
  delivery(int from_hz, int to_hz, int64_t skipped, wav_writer* writer)
      : position_(-skipped), converter_(from_hz, to_hz, 2), meters_(to_hz), writer_(*writer) {}

  // Takes the next samples of both channels. The file ends before its sample `end`; later ones are left out.
  void add(const float* left, const float* right, int count, int64_t end);
  // Writes what the converter still holds.
  void finish(int64_t end) { write(converter_.finish(), end); }

  // Samples that have to follow the last one, for the filter not to hear the stream break off.
  int64_t reach() const { return converter_.reach(); }
  const meters& measured() const { return meters_; }

 private:
  void write(const channel_samples& samples, int64_t end);

  int64_t position_;  // of the next sample in the file; below 0 it is left out
  rate_converter converter_;
  meters meters_;
  wav_writer& writer_;
};
