// MIT License. The 25 band-pass filters of the channel vocoder, in its two kinds.
#pragma once

#include <array>
#include <cstdint>

constexpr int32_t filter_bank_bands = 25;

// A band-pass section with 0 dB at its centre. Its b1 is 0.
struct bandpass_coefficients {
  float b0 = 0.0F;
  float b2 = 0.0F;
  float a1 = 0.0F;
  float a2 = 0.0F;
};

// How a band runs over a frame. Each pass starts from rest.
enum class band_filter : int32_t {
  bandpass_forward_backward,  // a pass forward and one backward: no phase shift
  bandpass_twice,             // two passes forward: the sound of an analogue bank
};

struct filter_bank_coefficients {
  std::array<bandpass_coefficients, filter_bank_bands> forward_backward;
  std::array<bandpass_coefficients, filter_bank_bands> twice;
};

// The band's section for a centre at `frequency` Hz, limited to 10 .. sample_rate / 2 - 10, and quality `q`.
//   formula   R. Bristow-Johnson, "Cookbook formulae for audio EQ biquad filter coefficients", band-pass with constant
//             0 dB peak gain
bandpass_coefficients bandpass_of(float frequency, float q, float sample_rate);

// The bands of both filters at `sample_rate` Hz.
filter_bank_coefficients filter_bank_coefficients_of(float sample_rate);
