// MIT License. The colour of a sound, and how different two sounds are.
#pragma once

#include <vector>

#include "hosts/measures/signal.h"

namespace measures {

// The centre of gravity of the power spectrum in Hz, over the whole signal: low for dark sounds. NaN for silence.
double spectral_centroid_hz(mono_view signal);

// The long-term levels in third-octave bands from 50 Hz to 12.5 kHz, in dB relative to the mean over the bands, so that
// loudness doesn't matter. Bands more than 60 dB below the strongest count as 60 dB below it.
std::vector<double> third_octave_shape_db(mono_view signal);

// The levels of the twelve semitones of all octaves together, from C up, in dB below the strongest; at least -30.
std::vector<double> chroma_db(mono_view signal);

// How strongly the level of the signal moves: the levels of its modulations in octave bands around 1, 2, 4, 8, 16 and
// 32 Hz, in dB relative to the mean level; at least -40.
std::vector<double> modulation_shape_db(mono_view signal);

// The features by which sounds are compared.
struct fingerprint {
  std::vector<double> speech_shape_db;      // third octaves of the demo voice on the chord
  std::vector<double> vowel_shape_db;       // third octaves of a vowel on a single key
  std::vector<double> chroma_db;            // of the vowel on the single key
  std::vector<double> modulation_shape_db;  // of the same
  double pause_level_db = 0.0;              // how soon it falls silent, without the reverb and
  double pause_level_with_reverb_db = 0.0;  // with it
  double stereo_correlation = 1.0;          // without the chorus
};

// The distance of two sounds, in dB: the root of the sum of the squares of
//   colour     the rms difference of both shapes, over all bands
//   pitches    half of the rms difference of the chromas
//   movement   half of the rms difference of the modulation shapes
//   tails      a tenth of the differences of the levels in pauses
//   width      3 dB times the difference of the stereo correlations
// The weights make a difference of one unit about equally audible: 1 dB over all bands is near the threshold of profile
// analysis (D. M. Green, "Profile Analysis", 1988), weak partials and weak modulations are masked in part, and a tail
// matters in pauses alone.
double distance_db(const fingerprint& a, const fingerprint& b);

}  // namespace measures
