// MIT License. The vocoders that work on the spectrum of a frame.
#pragma once

#include <cstdint>

#include "engine/voco_state.h"

// Transforms the windowed frame in `complex_frame`, modulator real and carrier imaginary. The modulator's spectrum
// replaces it, the carrier's goes to `carrier_spectrum`: noise for a consonant, where the sound asks for that.
void transform_analyse(voco_state* state);

// The algorithms. Each takes bins 0 to 511 of the two spectra, replaces those of `carrier_spectrum` by its result and
// clears the upper half.
void transform_geometric_mean(voco_state* state);   // of both magnitudes, with a tilt towards the highs
void transform_two_bin_bands(voco_state* state);    // 256 bands of two bins, weighted by the modulator's
void transform_carrier_phase(voco_state* state);    // the modulator's envelope at the carrier's phase
void transform_modulator_phase(voco_state* state);  // the product of both magnitudes at the modulator's phase
// The carrier is flattened by its own smoothed envelope and given the modulator's.
//   width     as smooth_magnitudes takes it: the smaller, the coarser the envelopes
void transform_smoothed(int32_t width, voco_state* state);

// Adds sibilance to the spectrum in `carrier_spectrum`, transforms it back and adds it to the overlap-add outputs. The
// spectrum is one-sided, so the inverse transform is a quadrature pair: its two parts, mixed crosswise, become left and
// right, which widens the mono result at no further cost.
void transform_synthesise(const voco_state::frame& window, float gain, voco_state* state);
