// MIT License. The fixed ten-band equaliser after the vocoder, which also carries the sound's output gain.
#pragma once

#include <array>
#include <cstdint>

constexpr int32_t eq_bands = 10;
constexpr int32_t eq_channels = 2;

// One peaking filter with its memory.
struct eq_section {
  float x1 = 0.0F;  // input history
  float x2 = 0.0F;
  float y1 = 0.0F;  // output history, before `gain`
  float y2 = 0.0F;
  float gain = 0.0F;  // output multiplier
  float b0 = 0.0F;    // peaking coefficients, not yet divided by a0
  float b1 = 0.0F;
  float b2 = 0.0F;
  float a0 = 0.0F;
  float a1 = 0.0F;
  float a2 = 0.0F;
  float alpha = 0.0F;  // the same filter at 0 dB, for display
  float flat_a0 = 0.0F;
  float flat_a1 = 0.0F;
  float flat_a2 = 0.0F;
  uint8_t prepared = 0;  // the coefficients are valid
};

struct output_equaliser {
  std::array<eq_section, eq_bands> left;
  std::array<eq_section, eq_bands> right;
};

// Gives `section` the coefficients of a peaking filter. Its memory and `gain` stay.
//   formula   R. Bristow-Johnson, "Cookbook formulae for audio EQ biquad filter coefficients", peaking EQ; formed in
//             double precision and rounded once
//   units     Hz, Hz, dB at the centre, quality
void eq_prepare(float sample_rate, float frequency, float gain_db, float q, eq_section* section);

// Gives all sections the curve.
//   offsets_db  ten dB values added to the curve's, both channels alike; null for none
void equaliser_prepare(float sample_rate, const float* offsets_db, output_equaliser* equaliser);

// Sets the overall gain in dB: each of the ten sections in series carries a tenth. Takes effect at once.
void equaliser_set_gain(float gain_db, output_equaliser* equaliser);

// Filters both channels in place, each through its ten sections in series. A result that isn't finite becomes 0 and
// clears the memory of that channel's sections before the next sample; where a signal is cut into blocks doesn't show.
//   shapes    left[n], right[n], n >= 0; two different arrays
//   audio     no heap; every section's recursion runs in single precision, left to right
void equaliser_process(float* left, float* right, int32_t n, output_equaliser* equaliser);

// The same with the instructions for every processor, or with those of AVX2, which the processor has to have.
void equaliser_process_with(bool avx2, float* left, float* right, int32_t n, output_equaliser* equaliser);
