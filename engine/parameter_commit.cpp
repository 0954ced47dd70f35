// MIT License.
#include "engine/parameter_commit.h"

#include <cmath>
#include <iterator>

#include "dsp/convert.h"
#include "dsp/fft.h"
#include "dsp/oscillators.h"
#include "dsp/wave_store.h"
#include "engine/voco_state.h"

namespace {

constexpr int32_t trapezoid_ramp = 128;   // samples of each slope
constexpr double trapezoid_height = 2.5;  // part of the spectral modes' level

void clear_envelopes(voco_state* state) {
  for (voco_state::bins* const array : {&state->fast_env, &state->slow_env, &state->carrier_mag, &state->carrier_phase,
                                        &state->target_env, &state->modulator_phase}) {
    array->fill(0.0F);
  }
}

struct synthesizer_place {
  wsyn_param synth;
  voco_param param;
};

// All of the synthesizer's parameters but its rate ratio.
// clang-format off
constexpr synthesizer_place synthesizer_places[] = {
    {wsyn_param_reference_pitch,  param_tuning},
    {wsyn_param_octave,           param_octave},
    {wsyn_param_sampled,          param_sampled},
    {wsyn_param_wave_select1,     param_wave1},
    {wsyn_param_wave_select2,     param_wave2},
    {wsyn_param_sync,             param_sync},
    {wsyn_param_ring,             param_ring},
    {wsyn_param_coarse1,          param_coarse1},
    {wsyn_param_fine1,            param_fine1},
    {wsyn_param_pitch_source1,    param_pitch_source1},
    {wsyn_param_pitch_depth1,     param_pitch_depth1},
    {wsyn_param_lfo_rate1,        param_lfo_rate1},
    {wsyn_param_coarse2,          param_coarse2},
    {wsyn_param_fine2,            param_fine2},
    {wsyn_param_pitch_source2,    param_pitch_source2},
    {wsyn_param_pitch_depth2,     param_pitch_depth2},
    {wsyn_param_lfo_rate2,        param_lfo_rate2},
    {wsyn_param_cutoff,           param_cutoff},
    {wsyn_param_resonance,        param_resonance},
    {wsyn_param_drive,            param_drive},
};
// clang-format on
static_assert(std::size(synthesizer_places) == wsyn_param_count - 1);

void commit_synthesizer(const voco_params& params, voco_state* state) {
  auto& synth = state->synth_params;
  const float core_rate = params[param_core_rate];
  synth[wsyn_param_rate_ratio] = core_rate <= 0.0F ? 1.0F : static_cast<float>(core_sample_rate_hz) / core_rate;
  for (const synthesizer_place& entry : synthesizer_places)
    synth[static_cast<size_t>(entry.synth)] = params[static_cast<size_t>(entry.param)];
  wsyn_commit(synth.data(), &state->synth);
}

double trapezoid(int32_t i) {
  if (i <= trapezoid_ramp) return i * 0.0078125;
  if (i > frame_size - trapezoid_ramp) return (frame_size - i) * 0.0078125;
  return 1.0;
}

// What the first commit gives every engine alike.
struct constant_tables {
  int32_t fft_log2_size;
  decltype(voco_state::fft_cos_table) fft_cos_table;
  voco_state::frame hann_window;
  voco_state::frame trapezoid_window;
  voco_state::frame welch_window;
  filter_bank_coefficients band_filters;
};

constant_tables build_tables() {
  constant_tables tables;
  fft_cos_table_init(&tables.fft_log2_size, frame_size, tables.fft_cos_table.data());
  for (int32_t i = 0; i < frame_size; ++i) {
    const auto entry = static_cast<size_t>(i);
    const float turn = static_cast<float>(i) * 6.2831855F * 0.0009765625F;
    tables.hann_window[entry] = 0.5F - 0.5F * static_cast<float>(std::cos(double{turn}));
    tables.trapezoid_window[entry] = static_cast<float>(trapezoid_height * trapezoid(i));
    const float offset = static_cast<float>(i - frame_hop) * 0.001953125F;
    tables.welch_window[entry] = 1.0F - offset * offset;
  }
  tables.band_filters = filter_bank_coefficients_of(static_cast<float>(core_sample_rate_hz));
  return tables;
}

const constant_tables& shared_tables() {
  static const constant_tables tables = build_tables();
  return tables;
}

// The tables are copied, 14 kB, so that a frame finds them next to what else it reads.
void commit_first(voco_state* state) {
  state->tag = voco_state_tag;
  state->frame_pos = frame_hop;
  const constant_tables& tables = shared_tables();
  state->fft_log2_size = tables.fft_log2_size;
  state->fft_cos_table = tables.fft_cos_table;
  state->hann_window = tables.hann_window;
  state->trapezoid_window = tables.trapezoid_window;
  state->welch_window = tables.welch_window;
  state->band_filters = tables.band_filters;
  chorus_prepare(&state->chorus);
}

float clamp_to_unit(float value) {
  if (value > 1.0F) return 1.0F;
  return value < 0.0F ? 0.0F : value;
}

}  // namespace

void voco_prepare(voco_state* state) {
  shared_wave_store();
  shared_tables();
  chorus_prepare(&state->chorus);
  reverb_prepare(&state->reverb);
}

void voco_commit(voco_params* params, voco_state* state) {
  voco_params& values = *params;
  const int32_t mode = truncate_to_int32(values[param_mode]);
  if (mode != state->mode) clear_envelopes(state);
  state->committing = 1;
  state->mode = mode;
  commit_synthesizer(values, state);

  state->internal_carrier = values[param_internal_carrier];
  state->chorus_on = truncate_to_int32(values[param_chorus]);
  state->env_release = values[param_env_release];
  state->env_mix = values[param_env_mix];
  state->env_attack = values[param_env_attack];
  state->env_average = values[param_env_average];
  for (float* const gain : {&values[param_dry_carrier], &values[param_dry_modulator], &values[param_wet]}) {
    *gain = clamp_to_unit(*gain);
  }
  state->dry_carrier_gain = values[param_dry_carrier] * 0.5F;
  state->dry_modulator_gain = values[param_dry_modulator];
  state->wet_gain = values[param_wet];
  state->reserved = values[param_reserved];
  state->freeze_on = truncate_to_int32(values[param_freeze]);
  state->sibilance_on = truncate_to_int32(values[param_sibilance]);
  state->noise_on = truncate_to_int32(values[param_noise]);

  if (state->committed == 0) commit_first(state);
  state->reverb_level = values[param_reverb_level];
  reverb_configure(values[param_reverb_level], values[param_reverb_size], &state->reverb);
  state->committed = 1;
  state->committing = 0;
}
