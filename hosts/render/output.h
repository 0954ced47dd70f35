// MIT License. The output: converted to the file's rate, measured and written.
#pragma once

#include <ebur128.h>
#include <sndfile.h>

#include <cstdint>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "hosts/effect/partial_file.h"
#include "hosts/render/sound_format.h"
#include "hosts/voice/memory_sound.h"
#include "hosts/voice/rate_converter.h"

// What a file says about itself.
struct sound_tags {
  std::string title;
  std::string software;
  std::string comment;
};

// Takes a stream of stereo samples.
class sample_sink {
 public:
  virtual void take(const float* left, const float* right, int count) = 0;

 protected:
  ~sample_sink() = default;
};

// A stereo sound file that appears under its name, or on standard output, only when it is complete.
class sound_writer {
 public:
  //   path     "-" is standard output, whose sound is in memory until finish()
  // Throws failure when `path` cannot be written, and when the format has no such samples or rate.
  sound_writer(const std::string& path, sound_format format, bool float_samples, int rate_hz, const sound_tags& tags);

  // Appends `count` samples per channel, clipped at full scale unless they are written as floats. Throws failure, for
  // example on a full disk or when the file would exceed the 4 GiB that a WAV header can express.
  void write(const float* left, const float* right, int count);

  // Closes the file and gives it its name. Throws failure.
  void finish();

 private:
  struct closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };

  // A file as libsndfile writes it. It keeps the first error, as libsndfile loses those of the last bytes.
  struct file_sound {
    std::optional<partial_file> file;
    std::exception_ptr error{};

    static SF_VIRTUAL_IO calls();
  };

  void check() const;  // throws what libsndfile has lost

  std::string what_;  // how messages name it
  file_sound disk_;
  memory_sound memory_;                    // for standard output
  std::unique_ptr<SNDFILE, closer> file_;  // closed before the partial file is deleted
  int64_t room_;                           // samples per channel that still fit
  std::vector<float> interleaved_;
};

// Peak, clipping and loudness of a stereo signal.
class meters {
 public:
  //   true_peak   measures it too, at some cost
  explicit meters(int rate_hz, bool true_peak = false);

  void add(const float* left, const float* right, int count);

  float peak() const { return peak_; }                         // largest magnitude; full scale is 1
  int64_t samples_above_full_scale() const { return above_; }  // of both channels together

  // Integrated loudness by EBU R 128 in LUFS; -infinity for silence and for less than 400 ms.
  double loudness_lufs() const;
  // The largest magnitude between samples, by ITU-R BS.1770; full scale is 1.
  double true_peak() const;

 private:
  struct closer {
    void operator()(ebur128_state* state) const { ebur128_destroy(&state); }
  };
  std::unique_ptr<ebur128_state, closer> loudness_;
  std::vector<float> interleaved_;
  float peak_ = 0.0F;
  int64_t above_ = 0;
};

// Scales, measures and writes a stream.
class file_output final : public sample_sink {
 public:
  file_output(int rate_hz, double gain, sound_writer* writer) : gain_(gain), meters_(rate_hz), writer_(*writer) {}

  void set_gain(double gain) { gain_ = gain; }
  void take(const float* left, const float* right, int count) override;
  const meters& measured() const { return meters_; }

 private:
  double gain_;
  meters meters_;
  sound_writer& writer_;
  std::vector<float> left_;
  std::vector<float> right_;
};

// Keeps a stream in a hidden file until its loudness is known.
class spool final : public sample_sink {
 public:
  //   path   of the output, in whose folder there has to be room
  spool(const std::string& path, int rate_hz);

  void take(const float* left, const float* right, int count) override;
  // Passes everything on.
  void play(sample_sink* sink);
  const meters& measured() const { return meters_; }

 private:
  struct closer {
    void operator()(SNDFILE* file) const { sf_close(file); }
  };
  std::string what_;
  partial_file partial_;
  std::unique_ptr<SNDFILE, closer> file_;
  meters meters_;
  std::vector<float> interleaved_;
};

// How loud a stream may become: its true peak stays 1 dB below full scale, where encoders and converters don't clip.
constexpr double highest_true_peak = 0.8912509381337456;

struct loudness_gain {
  double gain;
  bool limited;  // the true peak doesn't allow more
};

// The gain that brings a stream to `lufs`; 1 for one without loudness.
loudness_gain gain_to_loudness(double lufs, const meters& measured);

// Converts a stream, and cuts it to its length.
class delivery {
 public:
  //   skipped      samples at the file's rate to leave out at the start
  //   fade         samples at the file's rate over which the end is faded out
  delivery(int from_hz, int to_hz, int64_t skipped, int64_t fade, sample_sink* sink)
      : position_(-skipped), fade_(fade), converter_(from_hz, to_hz, 2), sink_(*sink) {}

  // Takes the next `count` samples of both channels. Samples from `end` on, counted at the file's rate, are left out.
  void add(const float* left, const float* right, int count, int64_t end);
  // Writes the samples that the converter still holds.
  void finish(int64_t end) { write(converter_.finish(), end); }

  // Samples that have to follow the last one so that the converter's filter doesn't see the end of the stream.
  int64_t reach() const { return converter_.reach(); }

 private:
  void write(const channel_samples& samples, int64_t end);

  int64_t position_;  // of the next sample in the file; negative while samples are skipped
  int64_t fade_;
  rate_converter converter_;
  sample_sink& sink_;
  std::vector<float> faded_[2];
};
