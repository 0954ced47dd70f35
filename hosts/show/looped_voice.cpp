// MIT License. The voice, repeated without end.
#include "hosts/show/looped_voice.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "hosts/effect/effect_host.h"
#include "hosts/effect/text.h"
#include "hosts/voice/channels.h"
#include "hosts/voice/voice.h"

extern const signed char demo_voice_bytes[];
extern const unsigned int demo_voice_bytes_size;

namespace {

constexpr double longest_seconds = 600.0;
constexpr double pause_seconds = 0.6;  // about as long as between two sentences
constexpr std::size_t piece_samples = 4096;

voice_reader reader_of(const std::string& path) {
  if (!path.empty()) return voice_reader(path);
  return {"demo", std::string(reinterpret_cast<const char*>(demo_voice_bytes), demo_voice_bytes_size)};
}

}  // namespace

looped_voice::looped_voice(const std::string& path) {
  voice_reader reader = reader_of(path);
  warning_ = reader.warning();
  const double seconds = static_cast<double>(reader.frames()) / reader.rate_hz();
  if (seconds > longest_seconds) throw failure("voice '" + path + "' is longer than ten minutes");

  const auto size = static_cast<std::size_t>(std::ceil((seconds + pause_seconds) * core_rate_hz));
  samples_.resize(size);
  voice_feed feed(&reader, choose_channels(voice_channel::automatic, &reader).weights, 0, core_rate_hz);
  for (std::size_t done = 0; done < size; done += piece_samples) {
    feed.next(samples_.data() + done, static_cast<int>(std::min(piece_samples, size - done)));
  }
}

void looped_voice::next(float* const* to, int count) {
  const std::size_t size = samples_.size();
  for (std::size_t done = 0, all = static_cast<std::size_t>(count); done < all;) {
    const std::size_t some = std::min(all - done, size - position_);
    for (int channel = 0; channel < 2; ++channel) {
      std::copy_n(samples_.data() + position_, some, to[channel] + done);
    }
    done += some;
    position_ = (position_ + some) % size;
  }
}
