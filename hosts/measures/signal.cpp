// MIT License. The signals that the measures take.
#include "hosts/measures/signal.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace measures {

std::vector<float> mono_of(const stereo& sound) {
  std::vector<float> mono(sound.left.size());
  std::transform(sound.left.begin(), sound.left.end(), sound.right.begin(), mono.begin(),
                 [](float left, float right) { return 0.5F * (left + right); });
  return mono;
}

double correlation(std::span<const double> a, std::span<const double> b) {
  const auto count = static_cast<double>(a.size());
  const double mean_a = std::accumulate(a.begin(), a.end(), 0.0) / count;
  const double mean_b = std::accumulate(b.begin(), b.end(), 0.0) / count;
  double ab = 0.0;
  double aa = 0.0;
  double bb = 0.0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    ab += (a[i] - mean_a) * (b[i] - mean_b);
    aa += (a[i] - mean_a) * (a[i] - mean_a);
    bb += (b[i] - mean_b) * (b[i] - mean_b);
  }
  return aa > 0.0 && bb > 0.0 ? ab / std::sqrt(aa * bb) : 0.0;
}

double stereo_correlation(const stereo& sound) {
  const std::vector<double> left(sound.left.begin(), sound.left.end());
  const std::vector<double> right(sound.right.begin(), sound.right.end());
  const auto is_silent = [](const std::vector<double>& channel) {
    return std::all_of(channel.begin(), channel.end(), [](double x) { return x == 0.0; });
  };
  return is_silent(left) && is_silent(right) ? 1.0 : correlation(left, right);
}

}  // namespace measures
