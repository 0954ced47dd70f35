// MIT License. A periodic tone as a list of partials, and its way to a 16-bit source signal of a given largest step.
#pragma once

#include <cstdint>
#include <vector>

// Phases are kept on this grid: the searches below may differ in the last bit between mathematics libraries, and their
// rounded results don't.
constexpr int32_t phases_per_turn = 4096;

// level * cos(2 pi (cycles * entry / period + phase / phases_per_turn)).
struct partial {
  int32_t cycles;     // whole cycles in one period, so that the tone has no seam
  int32_t harmonic;   // of the root key, 0 for one that belongs to no harmonic
  double level;       // amplitude before the tilt, any unit
  int32_t phase = 0;  // 0 to phases_per_turn - 1
};

struct tone {
  int32_t period;      // entries
  double root_cycles;  // cycles of the root key in one period, not whole
  bool mirrored;       // phases are 0 or half a turn, so that the signal is even about entry 0 and half the period
  std::vector<partial> partials;
};

// Our own random numbers, so that every library gives the same: D. Knuth's MMIX congruence, its upper 53 bits.
struct random_source {
  uint64_t state;
};
double next_uniform(random_source* random);  // 0 to below 1

// Energy-weighted mean of the partials' distance from their harmonic of the root key, in cents.
//   highest  only harmonics up to this one count
double centred_cents(const tone& tone, double tilt, int32_t highest);

// Entries 0 to count - 1. Each partial is weighted with (frequency / root frequency)^-tilt.
std::vector<double> tone_signal(const tone& tone, double tilt, int32_t count);

// Gives every partial a random phase, 0 or half a turn in a mirrored tone.
void scatter_phases(random_source* random, tone* tone);

// Moves the phases so that neither the signal nor its steps have high peaks: a loud loop with many harmonics within a
// largest step. Clips peaks and takes the phases of the clipped signal, as Van der Ouderaa, Schoukens and Renneboog,
// "Peak factor minimization using a time-frequency domain swapping algorithm", IEEE Trans. Instrum. Meas. 37 (1988),
// here with signal and steps in turn. A mirrored tone has its signs changed one by one instead, with the entries at the
// mirrors held near zero. Ends with entry 0 near zero, from which a decoder starts.
void flatten_tone(double tilt, tone* tone);

// The tilt at which the largest step, relative to a peak of 32767, is just not above `largest_step`.
//   range  -2 to 4, on a grid of 1/65536, for the same reason as the phases
double find_tilt(const tone& tone, int32_t largest_step);

// `count` samples with a peak of exactly 32767 and a largest step of exactly `largest_step`; single samples are moved
// by a unit or two to get there. Samples one period apart are equal.
std::vector<int16_t> source_signal(const tone& tone, double tilt, int32_t largest_step, int32_t count);
