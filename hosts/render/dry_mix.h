// MIT License. The voice beside what the effect makes of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

// The factor of a level in dB.
double gain_of_db(double db);

// Adds the voice to what the effect makes of it, as late as the effect.
class dry_mix {
 public:
  //   latency   of the effect in samples
  dry_mix(double wet_db, std::optional<double> dry_db, int64_t latency);

  //   shapes   voice[count], output[2][count]
  void add(const float* voice, int count, float* const* output);

 private:
  float wet_;
  float dry_;
  std::vector<float> ring_;
  std::size_t place_ = 0;
};
