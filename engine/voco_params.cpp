// MIT License.
#include "engine/voco_params.h"

#include <cstddef>

namespace {

struct place {
  voco_param param;
  sound_value value;
};

// clang-format off
constexpr place places[] = {
    {param_wet,              value_wet_gain},
    {param_dry_carrier,      value_dry_carrier_gain},
    {param_dry_modulator,    value_dry_modulator_gain},
    {param_env_mix,          value_env_mix},
    {param_env_attack,       value_env_attack},
    {param_env_release,      value_env_release},
    {param_env_average,      value_env_average},
    {param_mode,             value_mode},
    {param_sibilance,        value_sibilance_on},
    {param_noise,            value_noise_on},
    {param_freeze,           value_freeze_on},
    {param_reverb_level,     value_reverb_level},
    {param_reverb_size,      value_reverb_size},
    {param_cutoff,           value_cutoff},
    {param_resonance,        value_resonance},
    {param_drive,            value_drive},
    {param_internal_carrier, value_internal_carrier},
    {param_tuning,           value_tuning},
    {param_octave,           value_octave},
    {param_sampled,          value_sampled},
    {param_wave1,            value_wave1},
    {param_wave2,            value_wave2},
    {param_sync,             value_sync},
    {param_ring,             value_ring},
    {param_coarse1,          value_coarse1},
    {param_fine1,            value_fine1},
    {param_pitch_source1,    value_pitch_source1},
    {param_pitch_depth1,     value_pitch_depth1},
    {param_lfo_rate1,        value_lfo_rate1},
    {param_coarse2,          value_coarse2},
    {param_fine2,            value_fine2},
    {param_pitch_source2,    value_pitch_source2},
    {param_pitch_depth2,     value_pitch_depth2},
    {param_lfo_rate2,        value_lfo_rate2},
};
// clang-format on

}  // namespace

voco_params voco_params_from(const sound_values& values, float chorus, float core_rate) {
  voco_params params{};
  for (const place& entry : places) params[static_cast<size_t>(entry.param)] = values[static_cast<size_t>(entry.value)];
  params[param_chorus] = chorus;
  params[param_core_rate] = core_rate;
  return params;
}
