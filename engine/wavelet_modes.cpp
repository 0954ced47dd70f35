// MIT License.
#include "engine/wavelet_modes.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "dsp/wavelet.h"
#include "engine/bad_samples.h"
#include "engine/dc_block.h"
#include "engine/frame_arena.h"
#include "engine/voco_state.h"

namespace {

// The average is that of some hundred frames, a good second: avg' = (100 avg + sum) / 101
constexpr float average_weight = 100.0F;
constexpr float average_scale = 0.00990099F;
constexpr float gate = 0.5F;                 // of the average
constexpr float quietest_carrier = 0.0001F;  // a level below this isn't raised: it would be noise
constexpr float highest_ratio = 10.0F;       // of modulator to carrier
constexpr double contrast = 1.1;             // exponent of the ratio
constexpr float output_level = 0.16666667F;
constexpr int32_t split_divisor = 32;  // levels above n / 32 are the four highest octaves

// Both signals of a frame in the domain of one filter set. The transform points to the filters next to it, so the
// record must not be copied or moved.
struct decomposition {
  filter_set filters;
  wavelet transform;
  int32_t n = 0;
  int32_t steps = 0;
  float* modulator = nullptr;
  float* carrier = nullptr;
  std::span<float> workspace;
};

//   returns  0; 1 when the arena is exhausted
int32_t decomposition_make(int32_t filter_set_number, int32_t n, frame_arena* arena, decomposition* d) {
  filter_set_copy(*filter_set_of_number(filter_set_number), &d->filters);
  wavelet_bind(d->filters, &d->transform);
  d->n = n;
  for (int32_t s = n / 2; s > 1; s /= 2) ++d->steps;
  const int32_t workspace_size = wavelet_workspace_size(d->transform, n);
  d->modulator = frame_arena_take(n, arena);
  d->carrier = frame_arena_take(n, arena);
  float* const workspace = frame_arena_take(workspace_size, arena);
  if (d->modulator == nullptr || d->carrier == nullptr || workspace == nullptr) return 1;
  d->workspace = {workspace, static_cast<size_t>(workspace_size)};
  return 0;
}

void take_without_dc(const float* modulator, const float* carrier, decomposition* d) {
  std::copy_n(modulator, d->n, d->modulator);
  std::copy_n(carrier, d->n, d->carrier);
  dc_block_pair(d->modulator, d->carrier, d->n);
}

void analyse(decomposition* d) {
  for (float* const samples : {d->modulator, d->carrier}) {
    wavelet_forward(d->transform, samples, samples, d->n, d->steps, wavelet_extension_of_set, d->workspace);
  }
}

// No coarse term remains: the two lowest coefficients are cleared.
void synthesise(decomposition* d) {
  std::fill_n(d->modulator, 2, 0.0F);
  wavelet_inverse(d->transform, d->modulator, d->modulator, d->n, d->steps, wavelet_extension_of_set, d->workspace);
}

struct level_sums {
  float modulator = 0.0F;
  float carrier = 0.0F;
};

// Of the level in entries s to 2 s - 1.
level_sums sum_level(const decomposition& d, int32_t s) {
  level_sums sums;
  for (int32_t j = s; j < 2 * s; ++j) {
    sums.modulator += std::fabs(d.modulator[j]);
    sums.carrier += std::fabs(d.carrier[j]);
  }
  return sums;
}

float advanced_average(float average, float sum) {
  return (average * average_weight + sum) * average_scale;
}

void clear_level(const decomposition& d, int32_t s) {
  std::fill_n(d.modulator + s, s, 0.0F);
}

// The carrier's level at the modulator's loudness, or nothing for one below the gate.
void shape_level(const level_sums& sums, float average, int32_t s, const decomposition& d) {
  if (!(sums.modulator > average * gate && sums.carrier > quietest_carrier)) return clear_level(d, s);
  const float ratio = std::min(sums.modulator / sums.carrier, highest_ratio);
  const auto gain = static_cast<float>(std::pow(double{ratio}, contrast));
  for (int32_t j = s; j < 2 * s; ++j) d.modulator[j] = gain * d.carrier[j];
}

void vocode_single(float* modulator, const float* carrier, decomposition* d, voco_state* state) {
  take_without_dc(modulator, carrier, d);
  analyse(d);
  float* average = state->wavelet_level_avg.data();
  for (int32_t s = d->n / 2; s >= 1; s /= 2, ++average) {
    const level_sums sums = sum_level(*d, s);
    *average = advanced_average(*average, sums.modulator);
    shape_level(sums, *average, s, *d);
  }
  synthesise(d);
  for (int32_t i = 0; i < d->n; ++i) modulator[i] = finite_or_zero(d->modulator[i] * output_level);
}

// The 6-tap filters' levels set the averages of all, and are heard from the four highest.
void vocode_split(float* modulator, const float* carrier, decomposition* brief, decomposition* narrow,
                  voco_state* state) {
  take_without_dc(modulator, carrier, brief);
  std::copy_n(brief->modulator, brief->n, narrow->modulator);
  std::copy_n(brief->carrier, brief->n, narrow->carrier);
  analyse(brief);
  analyse(narrow);
  float* average = state->wavelet_level_avg.data();
  for (int32_t s = brief->n / 2; s >= 1; s /= 2, ++average) {
    const level_sums sums = sum_level(*brief, s);
    *average = advanced_average(*average, sums.modulator);
    if (s > brief->n / split_divisor) {
      shape_level(sums, *average, s, *brief);
      clear_level(*narrow, s);
    } else {
      shape_level(sum_level(*narrow, s), *average, s, *narrow);
      clear_level(*brief, s);
    }
  }
  synthesise(brief);
  synthesise(narrow);
  for (int32_t i = 0; i < brief->n; ++i) {
    modulator[i] = finite_or_zero(brief->modulator[i] * output_level + narrow->modulator[i] * output_level);
  }
}

// Of the pair only the 76-tap filters are heard at any level, so the others aren't run; their silence is still added.
void vocode_long(float* modulator, const float* carrier, decomposition* d, voco_state* state) {
  take_without_dc(modulator, carrier, d);
  analyse(d);
  float* average = state->wavelet_level_avg.data();
  for (int32_t s = d->n / 2; s >= 1; s /= 2, ++average) {
    *average = 0.0F;
    shape_level(sum_level(*d, s), *average, s, *d);
  }
  synthesise(d);
  for (int32_t i = 0; i < d->n; ++i) modulator[i] = finite_or_zero(0.0F + d->modulator[i] * output_level);
}

}  // namespace

void vocoder_wavelet(float* modulator, const float* carrier, int32_t n, voco_state* state) {
  const int32_t arena_used = state->arena.used;
  decomposition d;
  if (decomposition_make(filter_set_daubechies_4, n, &state->arena, &d) == 0) {
    vocode_single(modulator, carrier, &d, state);
  }
  frame_arena_release(arena_used, &state->arena);
}

void vocoder_wavelet_pair(wavelet_pair pair, float* modulator, const float* carrier, int32_t n, voco_state* state) {
  const int32_t arena_used = state->arena.used;
  decomposition narrow;
  if (decomposition_make(filter_set_daubechies_76, n, &state->arena, &narrow) == 0) {
    decomposition brief;
    if (pair == wavelet_pair::long_only) {
      vocode_long(modulator, carrier, &narrow, state);
    } else if (decomposition_make(filter_set_daubechies_6, n, &state->arena, &brief) == 0) {
      vocode_split(modulator, carrier, &brief, &narrow, state);
    }
  }
  frame_arena_release(arena_used, &state->arena);
}
