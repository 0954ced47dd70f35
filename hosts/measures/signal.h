// MIT License. The signals that the measures take.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace measures {

// The rate of all signals that are measured, the instrument's own.
constexpr int rate_hz = 44100;

using mono_view = std::span<const float>;  // full scale is 1

struct stereo {
  std::vector<float> left;
  std::vector<float> right;  // as long as `left`
};

// The mean of both channels.
std::vector<float> mono_of(const stereo& sound);

// The Pearson correlation of both channels, -1 to 1: 1 for a mono sound, 0 for unrelated channels. 1 for silence.
double stereo_correlation(const stereo& sound);

// Pearson's correlation of `a` and `b`, which are equally long; 0 when either is constant.
double correlation(std::span<const double> a, std::span<const double> b);

}  // namespace measures
