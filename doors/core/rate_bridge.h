// MIT License. Runs the effect at its own rate inside a stream of any rate.
#pragma once

#include <samplerate.h>

#include <cstdint>
#include <memory>
#include <vector>

constexpr double core_rate_hz = 44100;

// Frames of each block that the effect gets. One length, so that neither pitch nor sound depends on the host's blocks;
// short, as it is the grid of key changes (0.7 ms) and part of the delay.
constexpr int32_t core_block_frames = 32;

// What runs at the core rate.
class core_stage {
 public:
  // One block of core_block_frames; the input is mono.
  virtual void run_core_block(const float* in, float* left, float* right) = 0;

 protected:
  ~core_stage() = default;
};

// Converts by libsamplerate with its medium sinc filters: -121 dB of noise, flat to 90 % of the lower Nyquist
// frequency, any ratio. It was chosen over the other streaming converters at hand because its delay is that of half its
// filter, 1 ms each way, and constant to the sample; because it reaches the heap only when it is made; and because its
// licence leaves the plug-in's as it is. The best filters would add 4.4 ms for the last 1.5 kHz below 22 kHz.
//
// Both filters have linear phase, and each yields a sample as soon as the input that it needs is there. What is missing
// of the output at first is filled up with silence: from then on there is a frame out for each frame in.
class rate_bridge {
 public:
  // At 44100 Hz, where nothing is converted.
  rate_bridge() { prepare(core_rate_hz); }

  // Starts at `rate_hz`, limited to 1 kHz to 10 MHz. Throws std::bad_alloc, and then has to be prepared again.
  void prepare(double rate_hz);
  // Starts again at the same rate.
  void reset();

  double rate_hz() const { return rate_hz_; }
  // Frames at the host's rate by which the output follows the input, exactly, with a stage that has no delay of its
  // own.
  int32_t delay() const { return delay_; }

  // The core sample, counted from the start, that is the first at or after the host's frame `ahead` of the next one.
  int64_t core_position(int32_t ahead) const;
  // The first sample of the next block that the stage gets.
  int64_t next_core_block() const { return core_done_; }

  // Converts `frames` frames, up to longest_piece. `left` and `right` may be `in`.
  //   in      finite samples
  //   audio   no heap, no lock
  void process(const float* in, float* left, float* right, int32_t frames, core_stage* stage);

  static constexpr int32_t longest_piece = 256;

 private:
  struct closer {
    void operator()(SRC_STATE* state) const { src_delete(state); }
  };
  using converter = std::unique_ptr<SRC_STATE, closer>;  // null between equal rates

  // A first-in, first-out queue of frames.
  struct queue {
    std::vector<float> samples;  // interleaved
    int32_t channels = 1;
    int32_t frames = 0;

    void make_room(int32_t channel_count, int64_t capacity);
    float* end() { return samples.data() + static_cast<size_t>(frames * channels); }
    int32_t room() const { return static_cast<int32_t>(samples.size()) / channels - frames; }
    void drop(int32_t count);
  };

  static void convert(const converter& state, double ratio, const float* in, int32_t frames, queue* out);
  void take(const float* in, int32_t frames, core_stage* stage);
  int32_t measure_delay(int32_t frames);

  double rate_hz_ = core_rate_hz;
  int32_t delay_ = 0;
  int64_t taken_ = 0;      // host frames since the start
  int64_t core_done_ = 0;  // core samples that the stage has had
  converter to_core_;
  converter from_core_;
  queue to_do_;  // mono, at the core rate
  queue ready_;  // stereo, at the host's
};
