// MIT License.
#include "engine/filter_bank.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "dsp/lanes.h"
#include "engine/envelope_followers.h"
#include "engine/voco_state.h"

namespace {

// clang-format off
// Levels. With their narrower bands and steady ringing the two forward passes need less.
struct filter_gains { float carrier; float sibilance; };
constexpr filter_gains forward_backward_gains = {1.125F, 2.025F};
constexpr filter_gains twice_gains            = {0.375F, 0.6F};
// clang-format on

constexpr int32_t first_sibilance_band = 16;  // 4458 Hz
constexpr float quietest_carrier = 0.001F;    // a band below this isn't raised to full level: it would be noise

// Bands run side by side: modulator and carrier of a group of bands are interleaved sample by sample, so that the
// processor's lanes each follow one filter, every one in its own order.
constexpr int32_t group_bands = 8;
constexpr int32_t group_lanes = 2 * group_bands;  // lanes 0..7 modulator, 8..15 carrier
constexpr size_t lane_vectors = group_lanes / 4;
constexpr size_t band_vectors = group_bands / 4;

using lanes = std::array<float, group_lanes>;
using lane_row = std::array<float4, lane_vectors>;

// The coefficients, the same for modulator and carrier. b1 is left out, as it is 0 times a finite sample, and b2 is
// -b0.
struct group_coefficients {
  std::array<float4, band_vectors> b0{};
  std::array<float4, band_vectors> a1{};
  std::array<float4, band_vectors> a2{};
};

// Lanes beyond the last band get a filter of zeros and stay silent.
group_coefficients coefficients_of_group(const std::array<bandpass_coefficients, filter_bank_bands>& bands,
                                         int32_t first_band) {
  group_coefficients group;
  const int32_t count = std::min(group_bands, filter_bank_bands - first_band);
  for (int32_t i = 0; i < count; ++i) {
    const bandpass_coefficients& band = bands[static_cast<size_t>(first_band + i)];
    const size_t vector = static_cast<size_t>(i) / 4;
    const size_t lane = static_cast<size_t>(i) % 4;
    group.b0[vector][lane] = band.b0;
    group.a1[vector][lane] = band.a1;
    group.a2[vector][lane] = band.a2;
  }
  return group;
}

// The outputs of the last two samples.
struct pass_memory {
  lane_row y1{};
  lane_row y2{};
};

// One sample of every lane. `bx` and `bx2` are b0 times the input, now and two samples ago: a product serves twice.
inline lane_row filter_step(const group_coefficients& c, const lane_row& bx, const lane_row& bx2, pass_memory* memory) {
  lane_row y;
  for (size_t i = 0; i < lane_vectors; ++i) {
    const size_t band = i % band_vectors;
    y[i] = bx[i] - bx2[i] - c.a1[band] * memory->y1[i] - c.a2[band] * memory->y2[i];
  }
  memory->y2 = memory->y1;
  memory->y1 = y;
  return y;
}

inline lane_row scaled(const group_coefficients& c, const lane_row& x) {
  lane_row result;
  for (size_t i = 0; i < lane_vectors; ++i) result[i] = c.b0[i % band_vectors] * x[i];
  return result;
}

inline lane_row load_row(const float* row) {
  return {load4(row), load4(row + 4), load4(row + 8), load4(row + 12)};
}

inline void store_row(const lane_row& values, float* row) {
  for (size_t i = 0; i < lane_vectors; ++i) store4(values[i], row + 4 * i);
}

// The first pass, from the frames to `n` rows: its output times b0, as the second pass takes it.
void first_pass(const group_coefficients& c, const float* modulator, const float* carrier, int32_t n, float* rows) {
  const auto input = [&](int32_t t) -> lane_row {
    const float4 x = splat(modulator[t]);
    const float4 y = splat(carrier[t]);
    return scaled(c, {x, x, y, y});
  };
  pass_memory memory;
  for (int32_t t = 0; t < n; ++t) {
    const lane_row y = filter_step(c, input(t), t < 2 ? lane_row{} : input(t - 2), &memory);
    store_row(scaled(c, y), rows + t * group_lanes);
  }
}

// The second pass over `n` rows that are `step` floats apart, -group_lanes for backwards. Each result takes the place
// of the input of two samples ago, which nothing reads again; the first row follows two rows of zeros.
void second_pass(const group_coefficients& c, int32_t n, int32_t step, float* first) {
  pass_memory memory;
  for (int32_t t = 0; t < n; ++t) {
    float* const row = first + t * step;
    store_row(filter_step(c, load_row(row), load_row(row - 2 * step), &memory), row - 2 * step);
  }
}

// Both passes.
//   rows     room for n + 4 of them
//   returns  the first of the resulting `n` rows
const float* filter_group(band_filter filter, const group_coefficients& c, const float* modulator, const float* carrier,
                          int32_t n, float* rows) {
  constexpr int32_t margin = 2 * group_lanes;
  float* const inner = rows + margin;
  first_pass(c, modulator, carrier, n, inner);
  if (filter == band_filter::bandpass_forward_backward) {
    std::fill_n(inner + n * group_lanes, margin, 0.0F);
    second_pass(c, n, -group_lanes, inner + (n - 1) * group_lanes);
    return inner + margin;
  }
  std::fill_n(rows, margin, 0.0F);
  second_pass(c, n, group_lanes, inner);
  return rows;
}

// Mean magnitude of every lane.
lanes mean_levels(const float* rows, int32_t n) {
  lanes sums{};
  for (int32_t t = 0; t < n; ++t) {
    for (size_t i = 0; i < sums.size(); ++i) sums[i] += std::fabs(rows[t * group_lanes + static_cast<int32_t>(i)]);
  }
  for (float& sum : sums) sum /= static_cast<float>(n);
  return sums;
}

// Gains of the lanes of a group.
struct group_mix {
  std::array<float, group_bands> flatten{};    // 1 / level of the carrier's band
  std::array<float, group_bands> envelope{};   // the followers' blend for the modulator's band
  std::array<float, group_bands> sibilance{};  // of the modulator's band itself, 0 for none
};

group_mix mix_of_group(const lanes& levels, const filter_gains& gains, int32_t first_band, voco_state* state) {
  const follower_settings settings =
      follower_settings_of(state->env_attack, state->env_release, state->env_average, state->env_mix);
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

// Adds the group's bands to the output, in ascending order for every sample. Four samples go together, with their bands
// turned from rows into columns; up to three rows and outputs past the last sample are read and written with them.
void add_group(const group_mix& mix, float carrier_gain, bool with_sibilance, size_t count, const float* rows,
               int32_t n, float* output) {
  for (int32_t t = 0; t < n; t += 4) {
    std::array<float4, group_bands> modulator;
    std::array<float4, group_bands> carrier;
    for (size_t i = 0; i < group_bands; ++i) {
      const size_t first = i / 4 * 4;
      const float* const sample = rows + (t + static_cast<int32_t>(i % 4)) * group_lanes + first;
      modulator[i] = load4(sample);
      carrier[i] =
          load4(sample + group_bands) * load4(&mix.flatten[first]) * load4(&mix.envelope[first]) * splat(carrier_gain);
    }
    for (size_t first = 0; first < group_bands; first += 4) {
      transpose4(&modulator[first]);
      transpose4(&carrier[first]);
    }
    float4 sum = load4(output + t);
    for (size_t i = 0; i < count; ++i) {
      sum += carrier[i];
      if (with_sibilance) sum += modulator[i] * splat(mix.sibilance[i]);
    }
    store4(sum, output + t);
  }
}

}  // namespace

void vocoder_filter_bank(band_filter filter, float* modulator, const float* carrier, int32_t n, voco_state* state) {
  const int32_t arena_used = state->arena.used;
  float* const room = frame_arena_take((n + 7) * group_lanes, &state->arena);  // four rows of margin, and see add_group
  float* const output = frame_arena_take(n + 3, &state->arena);
  if (room != nullptr && output != nullptr) {
    const bool twice = filter == band_filter::bandpass_twice;
    const auto& bands = twice ? state->band_filters.twice : state->band_filters.forward_backward;
    const filter_gains& gains = twice ? twice_gains : forward_backward_gains;
    const bool with_sibilance = state->sibilance_on == 1;
    std::fill_n(output, n + 3, 0.0F);
    for (int32_t first_band = 0; first_band < filter_bank_bands; first_band += group_bands) {
      const group_coefficients coefficients = coefficients_of_group(bands, first_band);
      const float* const rows = filter_group(filter, coefficients, modulator, carrier, n, room);
      const group_mix mix = mix_of_group(mean_levels(rows, n), gains, first_band, state);
      const int32_t count = std::min(group_bands, filter_bank_bands - first_band);
      add_group(mix, gains.carrier, with_sibilance, static_cast<size_t>(count), rows, n, output);
    }
    std::copy_n(output, n, modulator);
  }
  frame_arena_release(arena_used, &state->arena);
}
