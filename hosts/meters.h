// MIT License. Peak, clipping and loudness of a stereo signal.
#pragma once

#include <ebur128.h>

#include <cstdint>
#include <memory>
#include <vector>

class meters {
 public:
  explicit meters(int rate_hz);

  void add(const float* left, const float* right, int count);

  float peak() const { return peak_; }                         // largest magnitude, full scale is 1
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
