// MIT License. Silence instead of a voice: there is no sound device that would play it.
#include <algorithm>

#include "hosts/effect/text.h"
#include "hosts/show/looped_voice.h"

looped_voice::looped_voice(const std::string& path) {
  if (!path.empty()) throw failure("voice '" + path + "' cannot be read: kesrel-show plays voices on Linux only");
}

void looped_voice::next(float* const* to, int count) {
  for (int channel = 0; channel < 2; ++channel) std::fill_n(to[channel], count, 0.0F);
}
