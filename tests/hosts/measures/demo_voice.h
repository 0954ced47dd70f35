// MIT License. The voice of the demo, which some measures are tried on.
#pragma once

#include <algorithm>
#include <cmath>
#include <vector>

#include "tests/hosts/command.h"

// At 44100 Hz, with a peak of half of full scale.
inline std::vector<float> demo_voice() {
  const recording voice = read_recording(KESREL_RESOURCES "/demo/voice.flac");
  std::vector<float> samples = voice.samples;
  const float scale = 0.5F / peak_of(voice);
  for (float& x : samples) x *= scale;
  return samples;
}
