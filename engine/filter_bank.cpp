// MIT License.
#include "engine/filter_bank.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "engine/envelope_followers.h"
#include "engine/voco_state.h"

namespace {

// clang-format off
// Centre frequencies: 100 Hz apart up to 600 Hz, from there a factor of 1.2, and the air band alone at the top.
constexpr std::array<float, filter_bank_bands> band_frequency_hz = {
    100.0F,     200.0F,     300.0F,     400.0F,     500.0F,      // 0
    600.0F,     720.0F,     864.0F,     1036.8F,    1244.16F,    // 5
    1492.992F,  1791.5905F, 2149.9084F, 2579.8901F, 3095.8682F,  // 10
    3715.0417F, 4458.0503F, 5349.6602F, 6419.5923F, 7703.5107F,  // 15
    9244.2129F, 11093.056F, 13311.667F, 15974.0F,   21000.0F,    // 20
};

// Levels. With their narrower bands and steady ringing the two forward passes need less.
struct filter_gains { float carrier; float sibilance; };
constexpr filter_gains forward_backward_gains = {1.125F, 2.025F};
constexpr filter_gains twice_gains            = {0.375F, 0.6F};
// clang-format on

constexpr int32_t last_rising_q_band = 21;    // forward and backward: the bands above are wide, to catch all of the air
constexpr float upper_q = 2.0F;               // their quality
constexpr int32_t first_sibilance_band = 16;  // 4458 Hz
constexpr float quietest_carrier = 0.001F;    // a band below this isn't raised to full level: it would be noise

// The quality rises with the fourth root of the band number, so that low bands stay wide enough to speak.
float band_quality(band_filter filter, int32_t band) {
  const double root = std::pow(0.04 * band, 0.25);
  if (filter == band_filter::bandpass_twice) return static_cast<float>(5.0 * root + 1.0);
  return band <= last_rising_q_band ? static_cast<float>(10.0 * root + 0.8) : upper_q;
}

// Bands run side by side: modulator and carrier of a group of bands are interleaved sample by sample, so that the
// processor's lanes each follow one filter, every one in its own order.
constexpr int32_t group_bands = 8;
constexpr int32_t group_lanes = 2 * group_bands;  // lanes 0..7 modulator, 8..15 carrier

using lanes = std::array<float, group_lanes>;

struct group_coefficients {
  lanes b0{};
  lanes b2{};
  lanes a1{};
  lanes a2{};
};

struct pass_memory {
  lanes x1{};
  lanes x2{};
  lanes y1{};
  lanes y2{};
};

// Lanes beyond the last band get a filter of zeros and stay silent.
group_coefficients coefficients_of_group(const std::array<bandpass_coefficients, filter_bank_bands>& bands,
                                         int32_t first_band) {
  group_coefficients group;
  const int32_t count = std::min(group_bands, filter_bank_bands - first_band);
  for (int32_t i = 0; i < count; ++i) {
    const bandpass_coefficients& band = bands[static_cast<size_t>(first_band + i)];
    for (const auto lane : {static_cast<size_t>(i), static_cast<size_t>(i + group_bands)}) {
      group.b0[lane] = band.b0;
      group.b2[lane] = band.b2;
      group.a1[lane] = band.a1;
      group.a2[lane] = band.a2;
    }
  }
  return group;
}

// One sample of every lane. The b1 term is left out: it is 0 times a finite sample.
inline void filter_step(const group_coefficients& c, const float* x, float* y, pass_memory* memory) {
  lanes next;
  for (size_t i = 0; i < next.size(); ++i) {
    next[i] = c.b0[i] * x[i] + c.b2[i] * memory->x2[i] - c.a1[i] * memory->y1[i] - c.a2[i] * memory->y2[i];
  }
  for (size_t i = 0; i < next.size(); ++i) {
    memory->x2[i] = memory->x1[i];
    memory->x1[i] = x[i];
    memory->y2[i] = memory->y1[i];
    memory->y1[i] = next[i];
    y[i] = next[i];
  }
}

// The first pass, from the frames to the group's interleaved samples.
void first_pass(const group_coefficients& c, const float* modulator, const float* carrier, int32_t n, float* group) {
  pass_memory memory;
  for (int32_t t = 0; t < n; ++t) {
    lanes x;
    std::fill_n(x.begin(), group_bands, modulator[t]);
    std::fill_n(x.begin() + group_bands, group_bands, carrier[t]);
    filter_step(c, x.data(), group + t * group_lanes, &memory);
  }
}

// The second pass, in place.
void second_pass(band_filter filter, const group_coefficients& c, int32_t n, float* group) {
  pass_memory memory;
  const bool backward = filter == band_filter::bandpass_forward_backward;
  for (int32_t step = 0; step < n; ++step) {
    float* const samples = group + (backward ? n - 1 - step : step) * group_lanes;
    filter_step(c, samples, samples, &memory);
  }
}

// Mean magnitude of every lane.
lanes mean_levels(const float* group, int32_t n) {
  lanes sums{};
  for (int32_t t = 0; t < n; ++t) {
    for (size_t i = 0; i < sums.size(); ++i) sums[i] += std::fabs(group[t * group_lanes + static_cast<int32_t>(i)]);
  }
  for (float& sum : sums) sum /= static_cast<float>(n);
  return sums;
}

// What a group adds to the output: the gains of its lanes.
struct group_mix {
  std::array<float, group_bands> flatten{};    // 1 / level of the carrier's band
  std::array<float, group_bands> envelope{};   // what the followers make of the modulator's band
  std::array<float, group_bands> sibilance{};  // of the modulator's band itself, 0 for none
};

group_mix mix_of_group(const lanes& levels, const filter_gains& gains, int32_t first_band, voco_state* state) {
  const follower_settings settings = follower_settings_of(*state);
  group_mix mix;
  const int32_t count = std::min(group_bands, filter_bank_bands - first_band);
  for (int32_t i = 0; i < count; ++i) {
    const auto lane = static_cast<size_t>(i);
    const auto band = static_cast<size_t>(first_band + i);
    if (state->freeze_on == 0) state->target_env[band] = levels[lane];
    followers_advance(state->target_env[band], settings, &state->fast_env[band], &state->slow_env[band]);
    mix.envelope[lane] = followers_value(settings, state->fast_env[band], state->slow_env[band]);
    mix.flatten[lane] = 1.0F / std::max(levels[lane + group_bands], quietest_carrier);
    if (state->sibilance_on == 1 && first_band + i >= first_sibilance_band) mix.sibilance[lane] = gains.sibilance;
  }
  return mix;
}

// Adds the group's bands to the output, in ascending order for every sample.
void add_group(const group_mix& mix, float carrier_gain, bool with_sibilance, int32_t count, const float* group,
               int32_t n, float* output) {
  for (int32_t t = 0; t < n; ++t) {
    const float* const samples = group + t * group_lanes;
    std::array<float, group_bands> bands;
    for (size_t i = 0; i < bands.size(); ++i) {
      bands[i] = samples[i + group_bands] * mix.flatten[i] * mix.envelope[i] * carrier_gain;
    }
    float sum = output[t];
    for (size_t i = 0; i < static_cast<size_t>(count); ++i) {
      sum += bands[i];
      if (with_sibilance) sum += samples[i] * mix.sibilance[i];
    }
    output[t] = sum;
  }
}

}  // namespace

bandpass_coefficients bandpass_of(float frequency, float q, float sample_rate) {
  const double limited = std::max(10.0, std::min<double>(frequency, sample_rate * 0.5 - 10.0));
  const double w = limited * 2.0 * std::numbers::pi / sample_rate;
  const double alpha = std::sin(w) / (2.0 * q);
  const double d = 1.0 / (alpha + 1.0);
  return {static_cast<float>(alpha * d), static_cast<float>(-alpha * d), static_cast<float>(-2.0 * std::cos(w) * d),
          static_cast<float>((1.0 - alpha) * d)};
}

filter_bank_coefficients filter_bank_coefficients_of(float sample_rate) {
  filter_bank_coefficients bank;
  for (int32_t band = 0; band < filter_bank_bands; ++band) {
    const auto i = static_cast<size_t>(band);
    bank.forward_backward[i] =
        bandpass_of(band_frequency_hz[i], band_quality(band_filter::bandpass_forward_backward, band), sample_rate);
    bank.twice[i] = bandpass_of(band_frequency_hz[i], band_quality(band_filter::bandpass_twice, band), sample_rate);
  }
  return bank;
}

void vocoder_filter_bank(band_filter filter, float* modulator, const float* carrier, int32_t n, voco_state* state) {
  const int32_t arena_used = state->arena.used;
  float* const group = frame_arena_take(n * group_lanes, &state->arena);
  float* const output = frame_arena_take(n, &state->arena);
  if (group != nullptr && output != nullptr) {
    const bool twice = filter == band_filter::bandpass_twice;
    const auto& bands = twice ? state->band_filters.twice : state->band_filters.forward_backward;
    const filter_gains& gains = twice ? twice_gains : forward_backward_gains;
    const bool with_sibilance = state->sibilance_on == 1;
    std::fill_n(output, n, 0.0F);
    for (int32_t first_band = 0; first_band < filter_bank_bands; first_band += group_bands) {
      const group_coefficients coefficients = coefficients_of_group(bands, first_band);
      first_pass(coefficients, modulator, carrier, n, group);
      second_pass(filter, coefficients, n, group);
      const group_mix mix = mix_of_group(mean_levels(group, n), gains, first_band, state);
      add_group(mix, gains.carrier, with_sibilance, std::min(group_bands, filter_bank_bands - first_band), group, n,
                output);
    }
    std::copy_n(output, n, modulator);
  }
  frame_arena_release(arena_used, &state->arena);
}
