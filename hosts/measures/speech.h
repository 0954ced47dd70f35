// MIT License. How a voice's envelopes, consonants and pauses come through.
#pragma once

#include "hosts/measures/signal.h"

namespace measures {

// Both signals of these functions are aligned; what one has in excess of the other is left out.

// How well the envelopes of 16 bands follow the voice's: the mean of their Pearson correlations, 1 for the voice
// itself.
double envelope_correlation(mono_view voice, mono_view processed);

// How loud sibilants (4 to 10 kHz) are beside vowels (0.2 to 3 kHz), in dB above the voice's own balance.
//   returns   NaN when the voice has no sibilants or no vowels, and when either is silent in `processed`
double sibilance_balance_db(mono_view voice, mono_view processed);

// The level in the voice's pauses, in dB above that in its speech: 0 when pauses are as loud as speech. Only pauses
// inside of the speech count, and of these what is 20 ms and more from speech.
//   returns   NaN when the voice has no such pause
double pause_level_db(mono_view voice, mono_view processed);

}  // namespace measures
