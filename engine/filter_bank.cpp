// MIT License.
#include "engine/filter_bank.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "dsp/wide_lanes.h"
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

// Bands run side by side, so that the processor's lanes each follow one filter, every one in its own order. They come
// in quads: the modulator's share of four bands, then the carrier's. A row holds the quads of a group for one sample;
// lanes beyond the last band get a filter of zeros and stay silent.
//
// A filter waits for its own last output, about ten cycles per sample. Four vectors hide that well, and more wouldn't
// leave registers for what they remember. So that many make a group, of 128 bits (V = float4) or 256 (V = float8).
constexpr int32_t quad_bands = 4;
constexpr int32_t quad_lanes = 2 * quad_bands;
constexpr int32_t bank_quads = (filter_bank_bands + quad_bands - 1) / quad_bands;
constexpr int32_t group_vectors = 4;

template <typename V>
constexpr int32_t group_quads = group_vectors* lanes_of<V> / quad_lanes;

// A row of vectors.
template <typename V, int32_t quads>
using row = std::array<V, static_cast<size_t>(quads* quad_lanes / lanes_of<V>)>;

template <int32_t quads>
constexpr int32_t row_lanes = quads* quad_lanes;

template <int32_t quads>
using lanes = std::array<float, static_cast<size_t>(row_lanes<quads>)>;

// Vector by vector: what GCC copies whole goes through memory in halves.
template <typename V, size_t count>
KESREL_INLINE void load_row(const float* from, std::array<V, count>* to) {
  for (size_t i = 0; i < count; ++i) load(from + i * lanes_of<V>, &(*to)[i]);
}

template <typename V, size_t count>
KESREL_INLINE void store_row(const std::array<V, count>& values, float* to) {
  for (size_t i = 0; i < count; ++i) store(values[i], to + i * lanes_of<V>);
}

// The coefficients of each lane. b1 is left out, as it is 0 times a finite sample, and b2 is -b0. They are read from
// memory at each sample: in registers, they would displace the outputs that the next sample waits for.
struct group_coefficients {
  const float* b0;
  const float* a1;
  const float* a2;
};

// Fills `room`, of three rows.
template <int32_t quads>
KESREL_INLINE group_coefficients coefficients_of_group(
    const std::array<bandpass_coefficients, filter_bank_bands>& bands, int32_t first_band, float* room) {
  float* const b0 = room;
  float* const a1 = b0 + row_lanes<quads>;
  float* const a2 = a1 + row_lanes<quads>;
  for (int32_t lane = 0; lane < row_lanes<quads>; ++lane) {
    const int32_t number = first_band + lane / quad_lanes * quad_bands + lane % quad_bands;
    const bool in_use = number < filter_bank_bands;
    const bandpass_coefficients band = in_use ? bands[static_cast<size_t>(number)] : bandpass_coefficients{};
    b0[lane] = band.b0;
    a1[lane] = band.a1;
    a2[lane] = band.a2;
  }
  return {b0, a1, a2};
}

// The outputs of the last two samples.
template <typename Row>
struct pass_memory {
  Row y1{};
  Row y2{};
};

// One sample of every lane. `bx` and `bx2` are b0 times the input, now and two samples ago: a product serves twice.
// Afterwards the output is y1 of the memory.
template <typename V, int32_t quads>
KESREL_INLINE void filter_step(const group_coefficients& c, const row<V, quads>& bx, const row<V, quads>& bx2,
                               pass_memory<row<V, quads>>* memory) {
  for (size_t i = 0; i < bx.size(); ++i) {
    V a1, a2;
    load(c.a1 + i * lanes_of<V>, &a1);
    load(c.a2 + i * lanes_of<V>, &a2);
    const V y = bx[i] - bx2[i] - a1 * memory->y1[i] - a2 * memory->y2[i];
    memory->y2[i] = memory->y1[i];
    memory->y1[i] = y;
  }
}

// A sample of both signals in the lanes of a quad.
using quad4 = std::array<float4, 2>;
using quad8 = std::array<float8, 1>;
KESREL_INLINE void fill_quad(float m, float c, quad4* quad) {
  *quad = {splat(m), splat(c)};
}
KESREL_INLINE void fill_quad(float m, float c, quad8* quad) {
  (*quad)[0] = __builtin_shufflevector(splat(m), splat(c), 0, 1, 2, 3, 4, 5, 6, 7);
}

// The first pass, from the frames to `n` rows: its output times b0, as the second pass takes it.
template <typename V, int32_t quads>
KESREL_INLINE void first_pass(const group_coefficients& c, const float* modulator, const float* carrier, int32_t n,
                              float* rows) {
  row<V, 1> x1{}, x2{};
  pass_memory<row<V, quads>> memory;
  for (int32_t t = 0; t < n; ++t) {
    row<V, 1> x;
    fill_quad(modulator[t], carrier[t], &x);
    row<V, quads> bx, bx2, by;
    for (size_t i = 0; i < bx.size(); ++i) {
      V b0;
      load(c.b0 + i * lanes_of<V>, &b0);
      bx[i] = b0 * x[i % x.size()];
      bx2[i] = b0 * x2[i % x.size()];
    }
    filter_step<V, quads>(c, bx, bx2, &memory);
    for (size_t i = 0; i < by.size(); ++i) {
      V b0;
      load(c.b0 + i * lanes_of<V>, &b0);
      by[i] = b0 * memory.y1[i];
    }
    store_row(by, rows + t * row_lanes<quads>);
    x2 = x1;
    x1 = x;
  }
}

// The second pass over `n` rows, of which the next is `step` floats on. Each result takes the place of the input of two
// samples ago, which nothing reads again; the first row follows two rows of zeros.
template <typename V, int32_t quads>
KESREL_INLINE void second_pass(const group_coefficients& c, int32_t n, int32_t step, float* first) {
  pass_memory<row<V, quads>> memory;
  for (int32_t t = 0; t < n; ++t) {
    float* const at = first + t * step;
    row<V, quads> bx, bx2;
    load_row(at, &bx);
    load_row(at - 2 * step, &bx2);
    filter_step<V, quads>(c, bx, bx2, &memory);
    store_row(memory.y1, at - 2 * step);
  }
}

// Both passes.
//   rows     room for n + 4 of them
//   returns  the first of the resulting `n` rows
template <typename V, int32_t quads>
KESREL_INLINE const float* filter_group(band_filter filter, const group_coefficients& c, const float* modulator,
                                        const float* carrier, int32_t n, float* rows) {
  constexpr int32_t margin = 2 * row_lanes<quads>;
  float* const inner = rows + margin;
  first_pass<V, quads>(c, modulator, carrier, n, inner);
  if (filter == band_filter::bandpass_forward_backward) {
    std::fill_n(inner + n * row_lanes<quads>, margin, 0.0F);
    second_pass<V, quads>(c, n, -row_lanes<quads>, inner + (n - 1) * row_lanes<quads>);
    return inner + margin;
  }
  std::fill_n(rows, margin, 0.0F);
  second_pass<V, quads>(c, n, row_lanes<quads>, inner);
  return rows;
}

// Mean magnitude of every lane.
template <typename V, int32_t quads>
KESREL_INLINE void mean_levels(const float* rows, int32_t n, lanes<quads>* levels) {
  row<V, quads> sums{};
  for (int32_t t = 0; t < n; ++t) {
    row<V, quads> values;
    load_row(rows + t * row_lanes<quads>, &values);
    for (size_t i = 0; i < sums.size(); ++i) {
      V size;
      without_sign(values[i], &size);
      sums[i] += size;
    }
  }
  for (V& sum : sums) sum /= static_cast<float>(n);
  store_row(sums, levels->data());
}

// Gains of one band.
struct band_mix {
  float flatten = 0.0F;    // 1 / level of the carrier's band
  float envelope = 0.0F;   // the followers' blend for the modulator's band
  float sibilance = 0.0F;  // of the modulator's band itself, 0 for none
};

KESREL_INLINE band_mix mix_of_band(float modulator_level, float carrier_level, const follower_settings& settings,
                                   const filter_gains& gains, int32_t number, voco_state* state) {
  band_mix mix;
  const auto band = static_cast<size_t>(number);
  if (state->freeze_on == 0) state->target_env[band] = modulator_level;
  followers_advance(state->target_env[band], settings, &state->fast_env[band], &state->slow_env[band]);
  mix.envelope = followers_value(settings, state->fast_env[band], state->slow_env[band]);
  mix.flatten = 1.0F / std::max(carrier_level, quietest_carrier);
  if (state->sibilance_on == 1 && number >= first_sibilance_band) mix.sibilance = gains.sibilance;
  return mix;
}

// As many samples as V has lanes of four bands, from rows into columns. In 256 bits the second four samples stay in the
// upper halves.
KESREL_INLINE void take_columns(const float* rows, int32_t stride, std::array<float4, quad_bands>* columns) {
  for (float4& column : *columns) {
    load(rows, &column);
    rows += stride;
  }
  transpose4(columns->data());
}
KESREL_INLINE void take_columns(const float* rows, int32_t stride, std::array<float8, quad_bands>* columns) {
  for (float8& column : *columns) {
    column = __builtin_shufflevector(load4(rows), load4(rows + 4 * stride), 0, 1, 2, 3, 4, 5, 6, 7);
    rows += stride;
  }
  transpose_halves(columns->data());
}

// Adds a quad's bands to the output, in ascending order for every sample. The lanes of a vector are samples here; some
// rows and outputs past the last sample are read and written with them.
template <typename V>
KESREL_INLINE void add_quad(const std::array<band_mix, quad_bands>& mix, float carrier_gain, bool with_sibilance,
                            const float* rows, int32_t stride, V* sum) {
  std::array<V, quad_bands> modulator;
  std::array<V, quad_bands> carrier;
  take_columns(rows + quad_bands, stride, &carrier);
  if (with_sibilance) take_columns(rows, stride, &modulator);
  for (size_t i = 0; i < quad_bands; ++i) {
    *sum += carrier[i] * mix[i].flatten * mix[i].envelope * carrier_gain;
    if (with_sibilance) *sum += modulator[i] * mix[i].sibilance;
  }
}

struct bank_frame {
  band_filter filter;
  const float* modulator;
  const float* carrier;
  int32_t n;
};

// Adds the output of `quads` quads of bands.
template <typename V, int32_t quads>
KESREL_INLINE void add_group(const bank_frame& frame, int32_t first_band, float* room, float* output,
                             voco_state* state) {
  const bool twice = frame.filter == band_filter::bandpass_twice;
  const auto& bands = twice ? state->band_filters.twice : state->band_filters.forward_backward;
  const filter_gains& gains = twice ? twice_gains : forward_backward_gains;
  const follower_settings settings =
      follower_settings_of(state->env_attack, state->env_release, state->env_average, state->env_mix);
  const group_coefficients c = coefficients_of_group<quads>(bands, first_band, room);
  float* const inner = room + 3 * row_lanes<quads>;
  const float* const rows = filter_group<V, quads>(frame.filter, c, frame.modulator, frame.carrier, frame.n, inner);
  lanes<quads> levels;
  mean_levels<V, quads>(rows, frame.n, &levels);
  std::array<std::array<band_mix, quad_bands>, quads> mix;
  for (size_t i = 0; i < quads * quad_bands; ++i) {
    const int32_t number = first_band + static_cast<int32_t>(i);
    if (number >= filter_bank_bands) break;
    const size_t lane = i / quad_bands * quad_lanes + i % quad_bands;
    mix[i / quad_bands][i % quad_bands] =
        mix_of_band(levels[lane], levels[lane + quad_bands], settings, gains, number, state);
  }
  const bool with_sibilance = state->sibilance_on == 1;
  for (int32_t t = 0; t < frame.n; t += lanes_of<V>) {
    V sum;
    load(output + t, &sum);
    for (int32_t quad = 0; quad < quads; ++quad) {
      add_quad(mix[static_cast<size_t>(quad)], gains.carrier, with_sibilance,
               rows + t * row_lanes<quads> + quad * quad_lanes, row_lanes<quads>, &sum);
    }
    store(sum, output + t);
  }
}

template <typename V>
KESREL_INLINE void run_bank(band_filter filter, float* modulator, const float* carrier, int32_t n, voco_state* state) {
  constexpr int32_t whole_group = group_quads<V>;
  constexpr int32_t last_group = bank_quads % whole_group;
  const int32_t rounded = n + lanes_of<V> - 1;
  const int32_t arena_used = state->arena.used;
  // Three rows of coefficients, four of margin, and those that are read past the last sample.
  float* const room = frame_arena_take((rounded + 7) * row_lanes<whole_group>, &state->arena);
  float* const output = frame_arena_take(rounded, &state->arena);
  if (room != nullptr && output != nullptr) {
    const bank_frame frame = {filter, modulator, carrier, n};
    std::fill_n(output, rounded, 0.0F);
    int32_t quad = 0;
    for (; quad + whole_group <= bank_quads; quad += whole_group) {
      add_group<V, whole_group>(frame, quad * quad_bands, room, output, state);
    }
    add_group<V, last_group>(frame, quad * quad_bands, room, output, state);
    std::copy_n(output, n, modulator);
  }
  frame_arena_release(arena_used, &state->arena);
}

}  // namespace

void vocoder_filter_bank(band_filter filter, float* modulator, const float* carrier, int32_t n, voco_state* state) {
  processor_has_avx2() ? vocoder_filter_bank_wide(filter, modulator, carrier, n, state)
                       : vocoder_filter_bank_narrow(filter, modulator, carrier, n, state);
}

void vocoder_filter_bank_narrow(band_filter filter, float* modulator, const float* carrier, int32_t n,
                                voco_state* state) {
  run_bank<float4>(filter, modulator, carrier, n, state);
}

KESREL_AVX2 void vocoder_filter_bank_wide(band_filter filter, float* modulator, const float* carrier, int32_t n,
                                          voco_state* state) {
  run_bank<float8>(filter, modulator, carrier, n, state);
}
