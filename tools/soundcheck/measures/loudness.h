// MIT License. Loudness and peaks by EBU R 128.
#pragma once

#include "tools/soundcheck/measures/signal.h"

namespace measures {

struct level {
  double loudness_lufs;  // integrated, gated; -infinity for silence and for less than 400 ms
  double true_peak_db;   // dBTP of the louder channel, by fourfold oversampling; -infinity for silence
};

// Measures as ITU-R BS.1770-4 and EBU Tech 3341 have it, by libebur128.
level level_of(const stereo& sound);

}  // namespace measures
