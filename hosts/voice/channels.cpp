// MIT License. Which channels of a stereo file the voice is taken from.
#include "hosts/voice/channels.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr channel_weights left_alone = {1.0F, 0.0F};
constexpr channel_weights right_alone = {0.0F, 1.0F};
constexpr channel_weights mean_of_both = {0.5F, 0.5F};

constexpr double silent_share = 1e-6;  // of the other channel's energy: -60 dB

double energy_of(const std::vector<float>& samples, int count) {
  double sum = 0.0;
  for (int i = 0; i < count; ++i) {
    const double sample = samples[static_cast<std::size_t>(i)];
    if (std::isfinite(sample)) sum += sample * sample;
  }
  return sum;
}

chosen_channels loudest_channels(voice_reader* voice) {
  constexpr int piece = 65536;
  std::vector<float> left(piece);
  std::vector<float> right(piece);
  double left_energy = 0.0;
  double right_energy = 0.0;
  for (int64_t unread = voice->frames(); unread > 0;) {
    const int count = static_cast<int>(std::min<int64_t>(unread, piece));
    voice->read({left.data(), right.data()}, count);
    left_energy += energy_of(left, count);
    right_energy += energy_of(right, count);
    unread -= count;
  }
  voice->rewind();
  if (right_energy < left_energy * silent_share)
    return {left_alone, "the right channel is silent: the left one is used"};
  if (left_energy < right_energy * silent_share)
    return {right_alone, "the left channel is silent: the right one is used"};
  return {mean_of_both, ""};
}

}  // namespace

chosen_channels choose_channels(voice_channel wanted, voice_reader* voice) {
  if (voice->channels() == 1 || wanted == voice_channel::left) return {left_alone, ""};
  if (wanted == voice_channel::right) return {right_alone, ""};
  if (wanted == voice_channel::mix) return {mean_of_both, ""};
  return loudest_channels(voice);
}
