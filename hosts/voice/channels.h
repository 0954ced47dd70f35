// MIT License. Which channels of a stereo file the voice is taken from.
#pragma once

#include <string>

#include "hosts/voice/voice.h"

enum class voice_channel { automatic, left, right, mix };

struct chosen_channels {
  channel_weights weights;
  std::string remark;  // for the user, when a channel is silent
};

// The weights for `wanted`. Automatically, a channel that is 60 dB or more below the other one counts as silent, and
// the other one is taken; else the mean of both. That reads the voice, and rewinds it.
//   throws   failure when the file can't be read to its end
chosen_channels choose_channels(voice_channel wanted, voice_reader* voice);
