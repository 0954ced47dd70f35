// MIT License.
#include "engine/prediction_modes.h"

#include <algorithm>
#include <array>

#include "dsp/linear_prediction.h"
#include "engine/bad_samples.h"
#include "engine/dc_block.h"
#include "engine/frame_arena.h"

namespace {

constexpr double residual_gain = 0.25;

// A silent carrier's level is 0, and 0 / 0 is NaN.
float scaled_or_zero(float sample, float modulator_level, float carrier_level) {
  return finite_or_zero(static_cast<float>(double{sample} * modulator_level * residual_gain / carrier_level));
}

}  // namespace

void vocoder_prediction(int32_t order, float* modulator, const float* carrier, int32_t n, lpc_workspace* workspace,
                        frame_arena* arena) {
  const int32_t arena_used = arena->used;
  float* const voice = frame_arena_take(n, arena);
  float* const result = frame_arena_take(n, arena);
  if (voice != nullptr && result != nullptr) {
    std::copy_n(modulator, n, voice);
    std::copy_n(carrier, n, result);
    dc_block_pair(voice, result, n);
    std::array<float, lpc_max_order> of_voice{};
    std::array<float, lpc_max_order> of_carrier{};
    lpc_fit_without_pitch(order, n, voice, of_voice.data(), workspace);
    lpc_fit_without_pitch(order, n, result, of_carrier.data(), workspace);
    const lpc_levels residual = lpc_cross(order, n, voice, of_voice.data(), result, of_carrier.data());
    for (int32_t i = 0; i < n; ++i) modulator[i] = scaled_or_zero(result[i], residual.modulator, residual.carrier);
  }
  frame_arena_release(arena_used, arena);
}
