// MIT License.
#include "engine/transform_modes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "dsp/fft.h"
#include "dsp/lanes.h"
#include "dsp/noise.h"
#include "engine/envelope_followers.h"
#include "engine/fast_atan2.h"
#include "engine/smooth_magnitudes.h"

namespace {

constexpr int32_t voiced_bins = 64;           // below 2.76 kHz, where voiced sounds have their energy
constexpr float silent_mean = 0.0001F;        // mean bin magnitude below which a frame counts as voiced
constexpr float silent_carrier = 0.0001F;     // a bin below this has no phase worth using
constexpr int32_t first_sibilance_bin = 128;  // 5.5 kHz
constexpr float sibilance_gain = 3.0F;        // of the modulator's bins from there up
constexpr float crossfeed = 0.25F;            // of the quadrature partner in each output channel

// Levels at which the algorithms come out about equally loud.
constexpr float geometric_mean_gain = 0.25F;
constexpr float single_phase_gain = 4.0F;  // of the two that combine one signal's level with one signal's phase
constexpr float smoothed_gain = 4.5F;

// The geometric mean, and the plain product of the magnitudes that is added to it and rises with the bin's number.
constexpr float mean_share = 1.5F;
constexpr float product_share = 0.1F;
constexpr float product_slope = 0.5F;  // per bin

// The bands of two bins: their level measure rises with the band's number; each follower has its share of the gain.
constexpr float band_level_slope = 0.5F;  // per band
constexpr float band_peak_share = 0.025F;
constexpr float band_average_share = 0.05F;
constexpr float band_gain = 0.35F;

// The tilt of the product of both magnitudes at the modulator's phase, 0.01 to about 1 over the spectrum.
constexpr float tilt_slope = 0.001953125F;  // 1 / 512 per bin
constexpr float tilt_at_bin_0 = 0.01F;

constexpr float flattest_carrier = 0.001F;  // a carrier's envelope below this isn't divided by

struct bin {
  float re;
  float im;
};

bin bin_at(const float* spectrum, int32_t k) {
  return {spectrum[2 * k], spectrum[2 * k + 1]};
}

void set_bin(bin value, int32_t k, float* spectrum) {
  spectrum[2 * k] = value.re;
  spectrum[2 * k + 1] = value.im;
}

float magnitude(bin value) {
  return std::sqrt(value.re * value.re + value.im * value.im);
}

float exact_phase(bin value) {
  return static_cast<float>(std::atan2(double{value.im}, double{value.re}));
}

// Four neighbouring bins.
struct bin_group {
  float4 re;
  float4 im;
};

bin_group bins_from(const float* spectrum, int32_t k) {
  const float4 a = load4(spectrum + 2 * k);
  const float4 b = load4(spectrum + 2 * k + 4);
  return {__builtin_shufflevector(a, b, 0, 2, 4, 6), __builtin_shufflevector(a, b, 1, 3, 5, 7)};
}

float4 magnitudes(const bin_group& bins) {
  return square_roots(bins.re * bins.re + bins.im * bins.im);
}

float4 exact_phases(const bin_group& bins) {
  float4 phases{};
  for (int i = 0; i < 4; ++i) phases[i] = exact_phase({bins.re[i], bins.im[i]});
  return phases;
}

float4 fast_phases(const bin_group& bins) {
  return fast_atan2(bins.im, bins.re);
}

bin polar(float amplitude, float phase) {
  return {amplitude * static_cast<float>(std::cos(double{phase})),
          amplitude * static_cast<float>(std::sin(double{phase}))};
}

// Splits the transform of (modulator + j carrier) into the two spectra, by the symmetry of a real signal's spectrum.
void split_spectra(voco_state* state) {
  float* const x = state->complex_frame.data();
  float* const y = state->carrier_spectrum.data();
  set_bin({x[1], 0.0F}, 0, y);
  x[1] = 0.0F;
  for (int32_t k = 1; k <= bin_count; ++k) {
    const bin z = bin_at(x, k);
    const bin mirror = bin_at(x, frame_size - k);
    const bin modulator = {(z.re + mirror.re) * 0.5F, (z.im - mirror.im) * 0.5F};
    const bin carrier = {(z.im + mirror.im) * 0.5F, (mirror.re - z.re) * 0.5F};
    set_bin(modulator, k, x);
    set_bin({modulator.re, -modulator.im}, frame_size - k, x);
    set_bin(carrier, k, y);
    set_bin({carrier.re, -carrier.im}, frame_size - k, y);
  }
}

// Mean magnitude above 2.76 kHz over that below: above 1 the frame is a consonant. 0 for a quiet frame.
float unvoiced_ratio(const float* modulator) {
  float low = 0.0F;
  float high = 0.0F;
  for (int32_t k = 0; k < voiced_bins; ++k) low += magnitude(bin_at(modulator, k));
  for (int32_t k = voiced_bins; k < bin_count; ++k) high += magnitude(bin_at(modulator, k));
  const float low_mean = low * 0.015625F;       // 1 / 64
  const float high_mean = high * 0.002232143F;  // 1 / 448
  return low_mean > silent_mean ? high_mean / low_mean : 0.0F;
}

bin noise_bin() {
  const float amplitude = static_cast<float>(noise_rand() * 9.155552842799158e-05);  // 0 to 3
  const double turn = noise_rand() * 6.103701895199438e-05 - 1.0;                    // -1 to 1
  return polar(amplitude, static_cast<float>(turn * 2.0 * std::numbers::pi));
}

void replace_unvoiced_carrier(voco_state* state) {
  if (state->noise_on < 1 || unvoiced_ratio(state->complex_frame.data()) <= 1.0F) return;
  for (int32_t k = 0; k < bin_count; ++k) set_bin(noise_bin(), k, state->carrier_spectrum.data());
}

void hold_modulator(voco_state* state) {
  if (state->freeze_on != 0) return;
  std::copy_n(state->complex_frame.begin(), 2 * bin_count, state->held_spectrum.begin());
}

follower_settings settings_of(const voco_state& state) {
  return follower_settings_of(state.env_attack, state.env_release, state.env_average, state.env_mix);
}

// Feeds bin k's magnitude to its followers and gives their blend.
float follow(float level, const follower_settings& settings, int32_t k, voco_state* state) {
  const auto i = static_cast<size_t>(k);
  followers_advance(level, settings, &state->fast_env[i], &state->slow_env[i]);
  return followers_value(settings, state->fast_env[i], state->slow_env[i]);
}

// Clears bin k of the modulator, which has been used, and bin 512 + k of the output, which becomes one-sided.
void clear_used_bins(int32_t k, voco_state* state) {
  set_bin({0.0F, 0.0F}, bin_count + k, state->carrier_spectrum.data());
  set_bin({0.0F, 0.0F}, k, state->complex_frame.data());
}

// Measures magnitude and phase of all bins. `weigh(envelope, carrier_level, k)` is what is stored as the envelope of
// the four bins from k on.
template <typename Phases, typename Weigh>
void analyse_bins(Phases phases, Weigh weigh, voco_state* state) {
  const follower_settings settings = settings_of(*state);
  for (int32_t k = 0; k < bin_count; k += 4) {
    const bin_group modulator = bins_from(state->complex_frame.data(), k);
    const bin_group carrier = bins_from(state->carrier_spectrum.data(), k);
    const float4 carrier_level = magnitudes(carrier);
    float4 carrier_phase = phases(carrier);
    float4 fast = load4(&state->fast_env[static_cast<size_t>(k)]);
    float4 slow = load4(&state->slow_env[static_cast<size_t>(k)]);
    followers_advance(magnitudes(modulator), settings, &fast, &slow);
    store4(fast, &state->fast_env[static_cast<size_t>(k)]);
    store4(slow, &state->slow_env[static_cast<size_t>(k)]);
    if (state->freeze_on == 0) {
      const int4 silent = carrier_level < silent_carrier;
      const float4 envelope = silent ? float4{} : followers_value(settings, fast, slow);
      carrier_phase = silent ? float4{} : carrier_phase;
      store4(weigh(envelope, carrier_level, k), &state->target_env[static_cast<size_t>(k)]);
      store4(phases(modulator), &state->modulator_phase[static_cast<size_t>(k)]);
    }
    store4(carrier_level, &state->carrier_mag[static_cast<size_t>(k)]);
    store4(carrier_phase, &state->carrier_phase[static_cast<size_t>(k)]);
  }
}

float4 envelope_alone(float4 envelope, float4 /*carrier_level*/, int32_t /*k*/) {
  return envelope;
}

float4 product_tilted(float4 envelope, float4 carrier_level, int32_t k) {
  const auto first = static_cast<float>(k);
  const float4 tilt = float4{first, first + 1.0F, first + 2.0F, first + 3.0F} * tilt_slope + tilt_at_bin_0;
  return carrier_level * envelope * tilt;
}

// The consonants of the voice pass straight to the output.
void add_sibilance(voco_state* state) {
  if (state->sibilance_on < 1) return;
  for (size_t j = 2 * first_sibilance_bin; j < 2 * bin_count; ++j) {
    state->carrier_spectrum[j] += sibilance_gain * state->held_spectrum[j];
  }
}

void overlap_add_quadrature(const voco_state::frame& window, float gain, voco_state* state) {
  for (size_t i = 0; i < frame_size; ++i) {
    const float re = state->carrier_spectrum[2 * i];
    const float im = state->carrier_spectrum[2 * i + 1];
    const float level = window[i] * gain;
    state->ola_left[i] += (re * crossfeed + im) * level;
    state->ola_right[i] += (im * crossfeed + re) * level;
  }
}

}  // namespace

void transform_analyse(voco_state* state) {
  fft_forward(state->complex_frame.data(), state->fft_log2_size, state->fft_cos_table.data());
  split_spectra(state);
  replace_unvoiced_carrier(state);
  hold_modulator(state);
}

void transform_geometric_mean(voco_state* state) {
  const follower_settings settings = settings_of(*state);
  float* const output = state->carrier_spectrum.data();
  for (int32_t k = 0; k < bin_count; ++k) {
    const auto i = static_cast<size_t>(k);
    const bin modulator = bin_at(state->complex_frame.data(), k);
    const bin carrier = bin_at(output, k);
    const float envelope = follow(magnitude(modulator), settings, k, state);
    if (state->freeze_on == 0) {
      state->target_env[i] = envelope;
      state->modulator_phase[i] = exact_phase(modulator);
    }
    state->carrier_mag[i] = magnitude(carrier);
    state->carrier_phase[i] = exact_phase(carrier);

    const float product = state->target_env[i] * state->carrier_mag[i];
    const float tilt = static_cast<float>(k) * product_slope;
    const float amplitude = std::sqrt(product) * mean_share + product * tilt * product_share;
    set_bin(polar(geometric_mean_gain * amplitude, state->carrier_phase[i]), k, output);
    clear_used_bins(k, state);
  }
}

// Bands of two bins, by an L1 measure that rises with frequency. Clearing the upper half runs ahead of the reading, so
// the bands from 256 up find nothing: 256 live bands cover everything up to 22 kHz.
void transform_two_bin_bands(voco_state* state) {
  const follower_settings settings = settings_of(*state);
  float* const modulator = state->complex_frame.data();
  float* const carrier = state->carrier_spectrum.data();
  for (int32_t k = 0; k < bin_count; ++k) {
    const auto i = static_cast<size_t>(k);
    const bin a = bin_at(modulator, 2 * k);
    const bin b = bin_at(modulator, 2 * k + 1);
    const float level = (std::fabs(a.re) + std::fabs(a.im) + std::fabs(b.re) + std::fabs(b.im)) *
                        (static_cast<float>(k) * band_level_slope + 1.0F);
    followers_advance(level, settings, &state->fast_env[i], &state->slow_env[i]);
    if (state->freeze_on == 0) {
      state->target_env[i] = (settings.peak_gain * state->fast_env[i] * band_peak_share * settings.mix +
                              state->slow_env[i] * band_average_share * (1.0F - settings.mix)) *
                             band_gain;
    }
    for (int32_t j = 4 * k; j < 4 * k + 4; ++j) carrier[j] *= state->target_env[i];
    if (k >= bin_count / 2) continue;
    for (const int32_t upper : {bin_count + 2 * k, bin_count + 2 * k + 1}) {
      set_bin({0.0F, 0.0F}, upper, modulator);
      set_bin({0.0F, 0.0F}, upper, carrier);
    }
  }
}

void transform_carrier_phase(voco_state* state) {
  analyse_bins(exact_phases, envelope_alone, state);
  for (int32_t k = 0; k < bin_count; ++k) {
    const auto i = static_cast<size_t>(k);
    set_bin(polar(single_phase_gain * state->target_env[i], state->carrier_phase[i]), k,
            state->carrier_spectrum.data());
    clear_used_bins(k, state);
  }
}

void transform_modulator_phase(voco_state* state) {
  analyse_bins(exact_phases, product_tilted, state);
  for (int32_t k = 0; k < bin_count; ++k) {
    const auto i = static_cast<size_t>(k);
    set_bin(polar(single_phase_gain * state->target_env[i], state->modulator_phase[i]), k,
            state->carrier_spectrum.data());
    clear_used_bins(k, state);
  }
}

// The carrier is flattened by its own smoothed envelope and given the modulator's.
void transform_smoothed(int32_t width, voco_state* state) {
  analyse_bins(fast_phases, envelope_alone, state);
  std::array<float, bin_count + 1> modulator_envelope;
  std::array<float, bin_count + 1> carrier_envelope;
  smooth_magnitudes(state->target_env.data(), frame_size, width, modulator_envelope.data(), &state->smoothing);
  smooth_magnitudes(state->carrier_mag.data(), frame_size, width, carrier_envelope.data(), &state->smoothing);
  for (int32_t k = 0; k <= bin_count; ++k) {
    const auto i = static_cast<size_t>(k);
    const float envelope = std::max(modulator_envelope[i], 0.0F);
    const float carrier_level = std::max(carrier_envelope[i], 0.0F);
    float flattened = 1.0F;
    if (carrier_level > flattest_carrier) flattened = std::min(state->carrier_mag[i] / carrier_level, 1.0F);
    set_bin(polar(smoothed_gain * flattened * envelope, state->carrier_phase[i]), k, state->carrier_spectrum.data());
    clear_used_bins(k, state);
  }
}

void transform_synthesise(const voco_state::frame& window, float gain, voco_state* state) {
  add_sibilance(state);
  fft_inverse(state->carrier_spectrum.data(), state->fft_log2_size, state->fft_cos_table.data());
  overlap_add_quadrature(window, gain, state);
}
