// MIT License. Linear prediction of a frame: the all-pole filter of its spectral envelope, and filtering with it.
#pragma once

#include <array>
#include <cstdint>

// An order of p fits p - 1 coefficients. The filters run over p taps, of which a fit leaves the last one 0.
// Method: J. Makhoul, "Linear prediction: a tutorial review", Proc. IEEE 63(4), 1975, the autocorrelation method. The
// sums keep a fixed order and precision, so that a frame has one result on every processor.

constexpr int32_t lpc_max_order = 130;
constexpr int32_t lpc_max_length = 1024;  // samples that a fit with its pitch search may have

// Whole cache lines, and an odd number of them, so that the rows of a column spread over the cache.
constexpr int32_t lpc_matrix_stride = 136;

// Rows and columns count from 1; the entries outside the n rows and columns in use are not touched.
struct lpc_matrix {
  alignas(64) std::array<std::array<double, lpc_matrix_stride>, lpc_max_order> entry{};
};

// Work memory of a fit, too large for the stack of an audio thread. Nothing in it is kept between calls.
struct lpc_workspace {
  lpc_matrix matrix;
  lpc_matrix inversion;
  std::array<float, lpc_max_length> lags{};
};

// What the loops work with. Results are the same; the wider ones are for processors that have AVX2.
enum class lpc_vectors { of_128_bits, of_256_bits };
lpc_vectors lpc_widest_vectors();

// Measures the first length / 2 lags and estimates the pitch from them.
//   shapes    signal[length], lags[length]; of `lags` the entries from length / 2 up are read as they come, normally 0
//   formula   r[k] = w[k] times the sum over i of x[i] x[i + k], with w[k] = (length / 2 - k) / length, a taper that
//             smooths the envelope. The last sample takes no part.
//   returns   the pitch lag in samples, between length / 50 and length / 2; 0 for silence
double lpc_autocorrelate(int32_t length, const float* signal, float* lags, lpc_vectors vectors = lpc_widest_vectors());

// Replaces rows and columns 1 to n of `matrix` by their inverse, by Gauss-Jordan elimination without pivot search. A
// singular matrix isn't noticed: its result is of no use, and finite or not.
//   shapes    n is below lpc_max_order
//   work      holds anything before and after
void lpc_matrix_invert(int32_t n, lpc_matrix* matrix, lpc_matrix* work, lpc_vectors vectors = lpc_widest_vectors());

// Fits the filter that predicts `signal` from its past: x[t] = a[0] x[t - 1] + a[1] x[t - 2] + ...
//   shapes    order up to lpc_max_order, signal[length] with length up to lpc_max_length, coefficients[order - 1]
//   returns   the pitch lag as lpc_autocorrelate finds it
float lpc_fit(int32_t order, int32_t length, const float* signal, float* coefficients, lpc_workspace* workspace,
              lpc_vectors vectors = lpc_widest_vectors());

// Fits the same coefficients to the last bit, in less time: only the lags that they need are measured.
void lpc_fit_without_pitch(int32_t order, int32_t length, const float* signal, float* coefficients,
                           lpc_workspace* workspace, lpc_vectors vectors = lpc_widest_vectors());

// Removes the predictable part of `input`, whose past is silence: the residual has a flat envelope.
//   shapes    order up to lpc_max_order, coefficients[order], input[length], output[length]; may be the same array
//   returns   sqrt(sum of output^2) / length, which is the root mean square over sqrt(length)
float lpc_residual(int32_t order, int32_t length, const float* input, const float* coefficients, float* output,
                   lpc_vectors vectors = lpc_widest_vectors());

// Gives `signal` the envelope of the coefficients, in place and from rest; undoes lpc_residual. Nothing tests whether
// the filter is stable: the result may be infinite or NaN.
//   shapes    as lpc_residual
//   returns   sqrt(sum of e^2) / length, where e is what rounding the output to float lost
float lpc_synthesise(int32_t order, int32_t length, float* signal, const float* coefficients);

struct lpc_levels {
  float modulator;
  float carrier;
};

// Removes the predictable part of both signals and gives the carrier's residual the envelope of the modulator, in less
// time than lpc_residual twice and lpc_synthesise take: the synthesis waits for itself at every sample, and meanwhile
// the processor has the residuals to compute.
//   shapes    as lpc_residual; the two signals are different arrays. The modulator becomes its residual
//   returns   what lpc_residual returns for each
lpc_levels lpc_cross(int32_t order, int32_t length, float* modulator, const float* modulator_coefficients,
                     float* carrier, const float* carrier_coefficients, lpc_vectors vectors = lpc_widest_vectors());
