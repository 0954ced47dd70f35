// MIT License. Loudness and peaks by EBU R 128.
#pragma once

#include "hosts/measures/signal.h"

namespace measures {

// Both measure as ITU-R BS.1770-4 and EBU Tech 3341 have it, by libebur128.

// Integrated, gated loudness; -infinity for silence and for less than 400 ms.
double loudness_lufs(const stereo& sound);

// The peak between samples of the louder channel in dBTP, by fourfold oversampling; -infinity for silence.
double true_peak_db(const stereo& sound);

// The same for the loudest of several sounds. Those whose highest sample is 3 dB below that of another one are passed
// over: where little is above 10 kHz, peaks between samples are less than that above them.
double highest_true_peak_db(const std::vector<const stereo*>& sounds);

}  // namespace measures
