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

// The filter of a frame, and the level of the residual that replaces the frame.
struct prediction {
  std::array<float, lpc_max_order> coefficients{};
  float residual_level = 0.0F;
};

prediction analyse(int32_t order, int32_t n, float* samples, lpc_workspace* workspace) {
  prediction result;
  float* const coefficients = result.coefficients.data();
  dc_block(samples, n);
  lpc_fit_without_pitch(order, n, samples, coefficients, workspace);
  result.residual_level = lpc_residual(order, n, samples, coefficients, samples);
  return result;
}

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
    const prediction of_voice = analyse(order, n, voice, workspace);
    const prediction of_carrier = analyse(order, n, result, workspace);
    lpc_synthesise(order, n, result, of_voice.coefficients.data());
    for (int32_t i = 0; i < n; ++i) {
      modulator[i] = scaled_or_zero(result[i], of_voice.residual_level, of_carrier.residual_level);
    }
  }
  frame_arena_release(arena_used, arena);
}
