// MIT License.
#include "engine/voco_params.h"

#include <algorithm>

voco_params voco_params_from(const sound_values& values, float chorus, float core_rate) {
  voco_params params{};
  std::copy_n(values.begin() + value_wet_gain, param_chorus - param_wet, params.begin() + param_wet);
  params[param_chorus] = chorus;
  std::copy_n(values.begin() + value_mode, param_reserved - param_mode, params.begin() + param_mode);
  std::copy_n(values.begin() + value_reverb_level, param_unused - param_reverb_level,
              params.begin() + param_reverb_level);
  std::copy_n(values.begin() + value_sampled, param_core_rate - param_sampled, params.begin() + param_sampled);
  params[param_core_rate] = core_rate;
  return params;
}
