// MIT License.
#include "engine/transform_modes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>

#include "dsp/fft.h"
#include "dsp/lanes.h"
#include "dsp/noise.h"
#include "engine/envelope_followers.h"
#include "engine/fast_atan2.h"
#include "engine/fast_sine.h"
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

// Beyond these magnitudes a bin's square leaves the range of single precision, or its precision.
constexpr float smallest_squarable = 1e-15F;
constexpr float largest_squarable = 1e15F;

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

bin polar(float amplitude, float phase) {
  return {amplitude * static_cast<float>(std::cos(double{phase})),
          amplitude * static_cast<float>(std::sin(double{phase}))};
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

void set_bins(const bin_group& bins, int32_t k, float* spectrum) {
  store4(__builtin_shufflevector(bins.re, bins.im, 0, 4, 1, 5), spectrum + 2 * k);
  store4(__builtin_shufflevector(bins.re, bins.im, 2, 6, 3, 7), spectrum + 2 * k + 4);
}

float4 magnitudes(const bin_group& bins) {
  return square_roots(bins.re * bins.re + bins.im * bins.im);
}

bin_group scaled(float4 factor, const bin_group& bins) {
  return {factor * bins.re, factor * bins.im};
}

// The numbers of four bins.
float4 numbers_from(int32_t k) {
  const auto first = static_cast<float>(k);
  return float4{first, first + 1.0F, first + 2.0F, first + 3.0F};
}

// As `directions`, for bins whose squares may overflow or vanish. Infinite parts count as the largest number, as the
// four-quadrant arc tangent has it; a zero has the phase 0, and a NaN stays one.
bin_group directions_of_extremes(bin_group bins, float4 levels) {
  constexpr float largest = std::numeric_limits<float>::max();
  const float4 scale = levels < smallest_squarable  ? splat(0x1p80F)
                       : levels > largest_squarable ? splat(0x1p-80F)
                                                    : splat(1.0F);
  for (float4* const part : {&bins.re, &bins.im}) {
    const float4 finite = *part > largest ? splat(largest) : *part < -largest ? splat(-largest) : *part;
    *part = finite * scale;
  }
  levels = magnitudes(bins);
  const int4 zero = levels == 0.0F;
  return {zero ? splat(1.0F) : bins.re / levels, zero ? float4{} : bins.im / levels};
}

// Cosine and sine of the bins' phases, as bins of magnitude 1. That needs no angle: an arc tangent and the way back
// would take ten times as long.
//   levels   the bins' magnitudes
bin_group directions(const bin_group& bins, float4 levels) {
  if (!all((levels >= smallest_squarable) & (levels <= largest_squarable))) return directions_of_extremes(bins, levels);
  return scaled(1.0F / levels, bins);
}

// Splits the transform of (modulator + j carrier) into the two spectra, by the symmetry of a real signal's spectrum.
// Of the modulator's only bins 0 to 512 are made; nobody needs their mirror image. Two bins at a time.
void split_spectra(voco_state* state) {
  float* const x = state->complex_frame.data();
  float* const y = state->carrier_spectrum.data();
  set_bin({x[1], 0.0F}, 0, y);
  x[1] = 0.0F;
  for (int32_t k = 1; k < bin_count; k += 2) {
    const int32_t mirror_k = frame_size - 1 - k;
    const float4 z = load4(x + 2 * k);
    const float4 backwards = load4(x + 2 * mirror_k);
    const float4 mirror = __builtin_shufflevector(backwards, backwards, 2, 3, 0, 1);
    const float4 sum = (z + mirror) * 0.5F;
    const float4 modulator_im = (z - mirror) * 0.5F;  // in the odd lanes
    const float4 carrier_im = (mirror - z) * 0.5F;    // in the even lanes
    const float4 carrier = __builtin_shufflevector(sum, carrier_im, 1, 4, 3, 6);
    const float4 conjugate = carrier * float4{1.0F, -1.0F, 1.0F, -1.0F};
    store4(__builtin_shufflevector(sum, modulator_im, 0, 5, 2, 7), x + 2 * k);
    store4(carrier, y + 2 * k);
    store4(__builtin_shufflevector(conjugate, conjugate, 2, 3, 0, 1), y + 2 * mirror_k);
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

struct follower_pair {
  float4 fast;
  float4 slow;
};

// Feeds the levels of four bins or bands to their followers.
//   returns  the followers after that
follower_pair follow(float4 levels, const follower_settings& settings, int32_t k, voco_state* state) {
  float* const fast_env = &state->fast_env[static_cast<size_t>(k)];
  float* const slow_env = &state->slow_env[static_cast<size_t>(k)];
  follower_pair followers = {load4(fast_env), load4(slow_env)};
  followers_advance(levels, settings, &followers.fast, &followers.slow);
  store4(followers.fast, fast_env);
  store4(followers.slow, slow_env);
  return followers;
}

// The envelopes of the modulator's four bins from k on.
float4 follow_modulator(const follower_settings& settings, int32_t k, voco_state* state) {
  const auto [fast, slow] = follow(magnitudes(bins_from(state->complex_frame.data(), k)), settings, k, state);
  return followers_value(settings, fast, slow);
}

// Makes the output one-sided.
void clear_bins_from(int32_t k, voco_state* state) {
  std::fill(state->carrier_spectrum.begin() + 2 * k, state->carrier_spectrum.end(), 0.0F);
}

// Replaces the carrier's bins, four at a time, by `combine(k, envelope, carrier)`: of the number of the first, the
// modulator's envelope there and the carrier's bins.
template <typename Combine>
void combine_bins(Combine combine, voco_state* state) {
  const follower_settings settings = settings_of(*state);
  float* const spectrum = state->carrier_spectrum.data();
  for (int32_t k = 0; k < bin_count; k += 4) {
    const float4 envelope = follow_modulator(settings, k, state);
    set_bins(combine(k, envelope, bins_from(spectrum, k)), k, spectrum);
  }
  clear_bins_from(bin_count, state);
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
  const auto combine = [state](int32_t k, float4 envelope, const bin_group& carrier) {
    float* const target_env = &state->target_env[static_cast<size_t>(k)];
    if (state->freeze_on == 0) store4(envelope, target_env);
    const float4 carrier_level = magnitudes(carrier);
    const float4 product = load4(target_env) * carrier_level;
    const float4 tilt = numbers_from(k) * product_slope;
    const float4 amplitude = square_roots(product) * mean_share + product * tilt * product_share;
    return scaled(geometric_mean_gain * amplitude, directions(carrier, carrier_level));
  };
  combine_bins(combine, state);
}

// Bands of two bins, by an L1 measure that rises with frequency: 256 of them cover everything up to 22 kHz. Four bands
// at a time.
void transform_two_bin_bands(voco_state* state) {
  const follower_settings settings = settings_of(*state);
  for (int32_t k = 0; k < bin_count / 2; k += 4) {
    const float* const modulator = state->complex_frame.data() + 4 * k;
    float* const carrier = state->carrier_spectrum.data() + 4 * k;
    float* const target_env = &state->target_env[static_cast<size_t>(k)];
    float4 parts[4];  // first of bands, then each part of all four
    for (int32_t band = 0; band < 4; ++band) parts[band] = magnitude(load4(modulator + 4 * band));
    transpose4(parts);
    const float4 level = (parts[0] + parts[1] + parts[2] + parts[3]) * (numbers_from(k) * band_level_slope + 1.0F);
    const auto [fast, slow] = follow(level, settings, k, state);
    if (state->freeze_on == 0) {
      store4((settings.peak_gain * fast * band_peak_share * settings.mix +
              slow * band_average_share * (1.0F - settings.mix)) *
                 band_gain,
             target_env);
    }
    for (int32_t band = 0; band < 4; ++band) {
      store4(load4(carrier + 4 * band) * target_env[band], carrier + 4 * band);
    }
  }
  clear_bins_from(bin_count, state);
}

void transform_carrier_phase(voco_state* state) {
  const auto combine = [state](int32_t k, float4 envelope, const bin_group& carrier) {
    float* const target_env = &state->target_env[static_cast<size_t>(k)];
    const float4 carrier_level = magnitudes(carrier);
    if (state->freeze_on == 0) store4(carrier_level < silent_carrier ? float4{} : envelope, target_env);
    return scaled(single_phase_gain * load4(target_env), directions(carrier, carrier_level));
  };
  combine_bins(combine, state);
}

void transform_modulator_phase(voco_state* state) {
  const auto combine = [state](int32_t k, float4 envelope, const bin_group& carrier) {
    float* const target_env = &state->target_env[static_cast<size_t>(k)];
    float* const phase = &state->modulator_phase[static_cast<size_t>(2 * k)];
    if (state->freeze_on == 0) {
      const float4 carrier_level = magnitudes(carrier);
      const float4 audible = carrier_level < silent_carrier ? float4{} : envelope;
      store4(carrier_level * audible * (numbers_from(k) * tilt_slope + tilt_at_bin_0), target_env);
      const bin_group modulator = bins_from(state->complex_frame.data(), k);
      const bin_group direction = directions(modulator, magnitudes(modulator));
      store4(direction.re, phase);
      store4(direction.im, phase + 4);
    }
    return scaled(single_phase_gain * load4(target_env), {load4(phase), load4(phase + 4)});
  };
  combine_bins(combine, state);
}

// The carrier is flattened by its own smoothed envelope and given the modulator's.
void transform_smoothed(int32_t width, voco_state* state) {
  const follower_settings settings = settings_of(*state);
  float* const spectrum = state->carrier_spectrum.data();
  float* const target_env = state->target_env.data();
  float* const carrier_mag = state->carrier_mag.data();
  float* const carrier_phase = state->carrier_phase.data();
  for (int32_t k = 0; k < bin_count; k += 4) {
    const float4 envelope = follow_modulator(settings, k, state);
    const bin_group carrier = bins_from(spectrum, k);
    const float4 carrier_level = magnitudes(carrier);
    float4 phase = fast_atan2(carrier.im, carrier.re);
    if (state->freeze_on == 0) {
      const int4 silent = carrier_level < silent_carrier;
      store4(silent ? float4{} : envelope, target_env + k);
      phase = silent ? float4{} : phase;
    }
    store4(carrier_level, carrier_mag + k);
    store4(phase, carrier_phase + k);
  }

  // The smoothed envelopes spread to bin 512. The other three of its group stay silent.
  std::array<float, bin_count + 4> modulator_envelope;
  std::array<float, bin_count + 4> carrier_envelope;
  for (auto* const envelope : {&modulator_envelope, &carrier_envelope}) std::fill_n(envelope->end() - 3, 3, 0.0F);
  smooth_magnitudes(target_env, frame_size, width, modulator_envelope.data(), &state->smoothing);
  smooth_magnitudes(carrier_mag, frame_size, width, carrier_envelope.data(), &state->smoothing);
  for (int32_t k = 0; k <= bin_count; k += 4) {
    const float4 smoothed_modulator = load4(modulator_envelope.data() + k);
    const float4 smoothed_carrier = load4(carrier_envelope.data() + k);
    const float4 envelope = smoothed_modulator < 0.0F ? float4{} : smoothed_modulator;
    const float4 ratio = load4(carrier_mag + k) / smoothed_carrier;
    const float4 flattened = (smoothed_carrier > flattest_carrier) & ~(ratio > 1.0F) ? ratio : splat(1.0F);
    const auto [cosine, sine] = fast_cosine_and_sine(load4(carrier_phase + k));
    set_bins(scaled(smoothed_gain * flattened * envelope, {cosine, sine}), k, spectrum);
  }
  clear_bins_from(bin_count + 4, state);
}

void transform_synthesise(const voco_state::frame& window, float gain, voco_state* state) {
  add_sibilance(state);
  fft_inverse(state->carrier_spectrum.data(), state->fft_log2_size, state->fft_cos_table.data());
  overlap_add_quadrature(window, gain, state);
}
