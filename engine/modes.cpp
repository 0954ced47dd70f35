// MIT License.
#include "engine/modes.h"

#include "engine/filter_bank.h"
#include "engine/prediction_modes.h"
#include "engine/transform_modes.h"
#include "engine/wavelet_modes.h"

namespace {

using enum wavelet_pair;
constexpr auto zero_phase = band_filter::bandpass_forward_backward;
constexpr auto two_passes = band_filter::bandpass_twice;

// With the trapezoid's height of 2.5 this is the level of the overlapping frames.
constexpr float bins_gain = 0.3333F;

template <int32_t width>
void smoothed(voco_state* state) {
  transform_smoothed(width, state);
}

template <band_filter filter>
void bank(voco_state* state) {
  vocoder_filter_bank(filter, state->time_modulator.data(), state->time_carrier.data(), frame_size, state);
}

template <int32_t order>
void predict(voco_state* state) {
  vocoder_prediction(order, state->time_modulator.data(), state->time_carrier.data(), frame_size, &state->prediction,
                     &state->arena);
}

void wavelet_4(voco_state* state) {
  vocoder_wavelet(state->time_modulator.data(), state->time_carrier.data(), frame_size, state);
}

template <wavelet_pair pair>
void wavelets(voco_state* state) {
  vocoder_wavelet_pair(pair, state->time_modulator.data(), state->time_carrier.data(), frame_size, state);
}

void keep_carrier(voco_state* /*state*/) {}

using enum vocoder_domain;
constexpr auto trapezoid = &voco_state::trapezoid_window;
constexpr auto welch = &voco_state::welch_window;
constexpr auto hann = &voco_state::hann_window;

constexpr vocoder_algorithm carrier_alone = {-1, "carrier alone", bins, trapezoid, bins_gain, keep_carrier};

constexpr bool in_order(const std::array<vocoder_algorithm, vocoder_mode_count>& algorithms) {
  for (size_t i = 0; i < algorithms.size(); ++i) {
    if (algorithms[i].mode != static_cast<int32_t>(i)) return false;
  }
  return true;
}

}  // namespace

// clang-format off
constexpr std::array<vocoder_algorithm, vocoder_mode_count> vocoder_algorithms = {{
//   number                       name                       domain   window     gain       function
    {mode_geometric_mean,         "geometric mean",          bins,    trapezoid, bins_gain, transform_geometric_mean},
    {mode_two_bin_bands,          "two-bin bands",           bins,    trapezoid, bins_gain, transform_two_bin_bands},
    {mode_carrier_phase,          "carrier phase",           bins,    trapezoid, bins_gain, transform_carrier_phase},
    {mode_smooth_512,             "smoothed, fine",          bins,    trapezoid, bins_gain, smoothed<512>},
    {mode_smooth_128,             "smoothed, medium",        bins,    trapezoid, bins_gain, smoothed<128>},
    {mode_smooth_32,              "smoothed, coarse",        bins,    trapezoid, bins_gain, smoothed<32>},
    {mode_filter_bank_zero_phase, "filter bank, zero phase", samples, welch,     1.0F,      bank<zero_phase>},
    {mode_filter_bank_twice,      "filter bank, two passes", samples, welch,     5.5F,      bank<two_passes>},
    {mode_prediction_10,          "prediction, order 10",    samples, welch,     5.5F,      predict<10>},
    {mode_prediction_35,          "prediction, order 35",    samples, welch,     5.5F,      predict<35>},
    {mode_prediction_80,          "prediction, order 80",    samples, welch,     5.5F,      predict<80>},
    {mode_modulator_phase,        "modulator phase",         bins,    trapezoid, bins_gain, transform_modulator_phase},
    {mode_wavelet_4,              "wavelet, 4 taps",         samples, hann,      5.5F,      wavelet_4},
    {mode_wavelet_split,          "wavelet, 6 and 76 taps",  samples, hann,      5.5F,      wavelets<split_by_level>},
    {mode_wavelet_76,             "wavelet, 76 taps",        samples, welch,     5.5F,      wavelets<long_only>},
}};
// clang-format on
static_assert(in_order(vocoder_algorithms));

const vocoder_algorithm& vocoder_algorithm_of(int32_t mode) {
  return mode >= 0 && mode < vocoder_mode_count ? vocoder_algorithms[static_cast<size_t>(mode)] : carrier_alone;
}
