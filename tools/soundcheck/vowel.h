// MIT License. A sung vowel.
#pragma once

#include <vector>

struct vowel_voice {
  double pitch_hz = 130.8128;   // C3
  double vibrato_hz = 5.5;      // in the middle of what singers do
  double vibrato_cents = 40.0;  // to both sides; 0 for a steady tone
  double seconds = 3.0;
};

// The vowel /a/ at 44100 Hz: the harmonics of a glottal source that falls by 12 dB an octave, rising by 6 dB from the
// lips, through five formants of a male voice (D. H. Klatt, "Software for a cascade/parallel formant synthesizer",
// JASA 67, 1980: frequencies and bandwidths of table II), up to 10 kHz. It fades in and out over 50 ms; its peak is
// at 1.
std::vector<float> sung_vowel(const vowel_voice& voice);
