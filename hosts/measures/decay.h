// MIT License. How long a sound rings on.
#pragma once

#include <cstddef>

#include "hosts/measures/signal.h"

namespace measures {

// The time for a decay by 60 dB, in seconds, from the energy that is left after each moment (M. R. Schroeder, "New
// Method of Measuring Reverberation Time", JASA 37, 1965), extrapolated from the fall between -5 and -25 dB.
//   from      where the excitation ends
//   returns   NaN for silence, and when the sound never falls by 25 dB within the signal
double reverb_time_seconds(mono_view signal, std::size_t from);

}  // namespace measures
