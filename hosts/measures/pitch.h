// MIT License. Which pitches a sound has, and how they move.
#pragma once

#include <vector>

#include "hosts/measures/signal.h"

namespace measures {

struct partial {
  double hz;
  double power;
};

// The strongest partials from `low_hz` to `high_hz`, the strongest first, at most `count`. Frequencies are interpolated
// between the bins of one long spectrum, by a parabola through the logarithms of three bins: for steady tones of half a
// second and longer the error is below 0.1 Hz. Sidebands don't count: weaker peaks are left out within 12 Hz of one
// that is 6 dB stronger.
std::vector<partial> strongest_partials(mono_view signal, double low_hz, double high_hz, std::size_t count);

// How far the strongest partials are out of tune, in cents: the mean, weighted by power, of their distances from the
// nearest harmonic of any of `fundamentals_hz`. The eight strongest count, from 60 Hz to eight times the highest
// fundamental: further up the harmonics of a chord are everywhere. NaN for silence.
double tuning_error_cents(mono_view signal, const std::vector<double>& fundamentals_hz);

struct modulation {
  double rate_hz;  // NaN for a steady tone
  double depth;    // amplitude of the stronger sideband relative to its partial: 1 for the beating of two equal tones
};

// How the strongest partial beats or is modulated: the distance of the strongest sideband from 0.7 to 16 Hz of it, in
// amplitude and frequency alike. Sidebands 30 dB below the partial don't count. Needs some three seconds.
modulation modulation_of(mono_view signal);

// The fundamental of `samples`, a stretch of some 50 ms, by the peak of its normalised autocorrelation from 70 to 400
// Hz; 0 when that is below 0.6, for noise and silence.
double fundamental_hz(mono_view samples);

// The fundamentals of a voice, every 2048 samples.
struct pitch_track {
  std::vector<double> hz;  // [i] around sample 2048 i + 4096; 0 where the voice has none
};
pitch_track pitch_track_of(mono_view voice);

// Whose pitch a vocoded voice has: 1 for that of the chord alone, 0 for the voice's alone. Compares the power at
// harmonics of the chord with that at harmonics of the voice, each over what is between them, from 80 Hz to 800 Hz, in
// frames in which the voice has a pitch.
//   processed   aligned with the voice
//   returns     NaN when the voice has no pitch, and when the sound has neither pitch
double chord_share(const pitch_track& voice, mono_view processed, const std::vector<double>& fundamentals_hz);

}  // namespace measures
