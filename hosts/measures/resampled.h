// MIT License. A signal at another rate.
#pragma once

#include <vector>

#include "hosts/measures/signal.h"

namespace measures {

// `signal` at `to_hz`, by libsoxr at high quality, aligned: the first sample keeps its time.
std::vector<float> resampled(mono_view signal, double to_hz);

}  // namespace measures
