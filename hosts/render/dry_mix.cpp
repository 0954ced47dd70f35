// MIT License. The voice beside what the effect makes of it.
#include "hosts/render/dry_mix.h"

#include <cmath>
#include <utility>

double gain_of_db(double db) {
  return std::pow(10.0, db / 20.0);
}

dry_mix::dry_mix(double wet_db, std::optional<double> dry_db, int64_t latency)
    : wet_(static_cast<float>(gain_of_db(wet_db))),
      dry_(dry_db ? static_cast<float>(gain_of_db(*dry_db)) : 0.0F),
      ring_(static_cast<std::size_t>(latency)) {}

void dry_mix::add(const float* voice, int count, float* const* output) {
  if (wet_ == 1.0F && dry_ == 0.0F) return;
  for (int i = 0; i < count; ++i) {
    const float dry = dry_ * std::exchange(ring_[place_], voice[i]);
    place_ = (place_ + 1) % ring_.size();
    for (const int channel : {0, 1}) output[channel][i] = wet_ * output[channel][i] + dry;
  }
}
