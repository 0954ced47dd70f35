// MIT License. The vocoders that work on the spectrum of a frame: modes 0 to 5 and 11.
#pragma once

#include <cstdint>

struct voco_state;

// Numbers of the spectral algorithms. Any other number leaves the carrier's spectrum as it is.
enum transform_mode : int32_t {
  mode_geometric_mean = 0,   // geometric mean of modulator and carrier, with a rising tilt
  mode_two_bin_bands = 1,    // 256 bands of two bins
  mode_carrier_phase = 2,    // modulator's envelope at the carrier's phase
  mode_smooth_512 = 3,       // smoothed envelopes, fine
  mode_smooth_128 = 4,       // smoothed envelopes, medium
  mode_smooth_32 = 5,        // smoothed envelopes, coarse
  mode_modulator_phase = 11  // both magnitudes at the modulator's phase
};

// Vocodes the windowed frame in `complex_frame` (modulator real, carrier imaginary) and adds the result to the
// overlap-add outputs. The output's spectrum is one-sided, so the inverse transform is a quadrature pair: its two
// parts, mixed crosswise, become left and right, which widens the mono result at no further cost.
//   audio     no heap
void transform_vocode(voco_state* state);
