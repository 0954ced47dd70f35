// MIT License. The output: converted to the file's rate, measured and written.
#pragma once

#include <ebur128.h>
#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "hosts/effect/partial_file.h"
#include "hosts/voice/rate_converter.h"

enum class sample_format { pcm_24, float_32 };

// A stereo WAV file that appears under its name only when it is complete.
class wav_writer {
 public:
  // Throws failure when `path` cannot be written.
  wav_writer(const std::string& path, int rate_hz, sample_format format);

  // Appends `count` samples per channel, clipped at full scale in 24-bit files. Throws failure, for example on a full
  // disk or when the file would exceed the 4 GiB that a WAV header can express.
  void write(const float* left, const float* right, int count);

  // Closes the file and gives it its name. Throws failure.
  void finish();

 private:
  struct closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };

  std::string what_;  // how messages name it
  partial_file partial_;
  std::unique_ptr<SNDFILE, closer> file_;  // closed before the partial file is deleted
  int64_t room_;                           // samples per channel that still fit
  std::vector<float> interleaved_;
};

// Peak, clipping and loudness of a stereo signal.
class meters {
 public:
  explicit meters(int rate_hz);

  void add(const float* left, const float* right, int count);

  float peak() const { return peak_; }                         // largest magnitude; full scale is 1
  int64_t samples_above_full_scale() const { return above_; }  // of both channels together

  // Integrated loudness by EBU R 128 in LUFS; -infinity for silence and for less than 400 ms.
  double loudness_lufs() const;

 private:
  struct closer {
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
  };
  std::unique_ptr<ebur128_state, closer> loudness_;
  std::vector<float> interleaved_;
  float peak_ = 0.0F;
  int64_t above_ = 0;
};

// Converts, measures and writes a stream.
class delivery {
 public:
  //   skipped   samples at the file's rate to leave out at the start
  delivery(int from_hz, int to_hz, int64_t skipped, wav_writer* writer)
      : position_(-skipped), converter_(from_hz, to_hz, 2), meters_(to_hz), writer_(*writer) {}

  // Takes the next `count` samples of both channels. Samples from `end` on, counted at the file's rate, are left out.
  void add(const float* left, const float* right, int count, int64_t end);
  // Writes the samples that the converter still holds.
  void finish(int64_t end) { write(converter_.finish(), end); }

  // Samples that have to follow the last one so that the converter's filter doesn't see the end of the stream.
  int64_t reach() const { return converter_.reach(); }
  const meters& measured() const { return meters_; }

 private:
  void write(const channel_samples& samples, int64_t end);

  int64_t position_;  // of the next sample in the file; negative while samples are skipped
  rate_converter converter_;
  meters meters_;
  wav_writer& writer_;
};
