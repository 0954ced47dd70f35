// MIT License. The carrier's oscillators: from parameters to pitch, and one sample of one note.
#include "dsp/oscillators.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <span>

#include "dsp/convert.h"
#include "dsp/oscillator_lanes.h"
#include "dsp/wave_store.h"

namespace {

// --- The two oscillators ---

// One oscillator's parameters and its members of the synthesizer's record, which holds those of both side by side.
struct oscillator {
  wsyn_param wave_select_param;
  wsyn_param coarse_param;
  wsyn_param fine_param;
  wsyn_param pitch_source_param;
  wsyn_param pitch_depth_param;
  wsyn_param lfo_rate_param;
  int32_t wsyn_state::*wave;
  int32_t wsyn_state::*wrap;
  float wsyn_state::*coarse;
  float wsyn_state::*fine;
  float wsyn_state::*pitch_source;
  float wsyn_state::*pitch_depth;
  float wsyn_state::*lfo_control;
  float wsyn_state::*lfo_step;
  float wsyn_state::*lfo_phase;
  double wsyn_state::*tune;
  double wsyn_state::*pitch_mod;
  double (wsyn_state::*note_ratio)[wsyn_voice_count];
  float (wsyn_state::*shape)[wsyn_shape_entries];
  const wsyn_voice_wave* wsyn_state::*voice_wave;
};

constexpr oscillator oscillators[] = {
    {.wave_select_param = wsyn_param_wave_select1,
     .coarse_param = wsyn_param_coarse1,
     .fine_param = wsyn_param_fine1,
     .pitch_source_param = wsyn_param_pitch_source1,
     .pitch_depth_param = wsyn_param_pitch_depth1,
     .lfo_rate_param = wsyn_param_lfo_rate1,
     .wave = &wsyn_state::wave1,
     .wrap = &wsyn_state::wrap1,
     .coarse = &wsyn_state::coarse1,
     .fine = &wsyn_state::fine1,
     .pitch_source = &wsyn_state::pitch_source1,
     .pitch_depth = &wsyn_state::pitch_depth1,
     .lfo_control = &wsyn_state::lfo_control1,
     .lfo_step = &wsyn_state::lfo_step1,
     .lfo_phase = &wsyn_state::lfo_phase1,
     .tune = &wsyn_state::tune1,
     .pitch_mod = &wsyn_state::pitch_mod1,
     .note_ratio = &wsyn_state::note_ratio1,
     .shape = &wsyn_state::shape1,
     .voice_wave = &wsyn_state::voice_wave1},
    {.wave_select_param = wsyn_param_wave_select2,
     .coarse_param = wsyn_param_coarse2,
     .fine_param = wsyn_param_fine2,
     .pitch_source_param = wsyn_param_pitch_source2,
     .pitch_depth_param = wsyn_param_pitch_depth2,
     .lfo_rate_param = wsyn_param_lfo_rate2,
     .wave = &wsyn_state::wave2,
     .wrap = &wsyn_state::wrap2,
     .coarse = &wsyn_state::coarse2,
     .fine = &wsyn_state::fine2,
     .pitch_source = &wsyn_state::pitch_source2,
     .pitch_depth = &wsyn_state::pitch_depth2,
     .lfo_control = &wsyn_state::lfo_control2,
     .lfo_step = &wsyn_state::lfo_step2,
     .lfo_phase = &wsyn_state::lfo_phase2,
     .tune = &wsyn_state::tune2,
     .pitch_mod = &wsyn_state::pitch_mod2,
     .note_ratio = &wsyn_state::note_ratio2,
     .shape = &wsyn_state::shape2,
     .voice_wave = &wsyn_state::voice_wave2},
};

// --- Commit ---

void load_voice_wave(const oscillator& o, wsyn_state* state) {
  const int32_t number = state->*o.wave;
  state->*o.voice_wave = wsyn_voice_wave_of(number, state);
  state->*o.wrap = wsyn_wrap_of(number);
}

// Everything that stays as it is for the life of the record.
void first_commit(wsyn_state* state) {
  state->magic = wsyn_magic;
  state->bend = 1.0F;
  state->output_level = 1.0F;
  wsyn_draw_noise_loop(state);
  for (const oscillator& o : oscillators) load_voice_wave(o, state);
  state->sine_table = shared_wave_store().sine_table;
}

// Loads what has changed. A change of mode reloads both oscillators, as the tables of the other kind may be stale. A
// mode that isn't a number loads nothing.
void commit_table(const float* params, bool mode_changed, const oscillator& o, wsyn_state* state) {
  const bool loops = state->mode >= 0.5F;
  const bool shapes = state->mode < 0.5F;
  const int32_t wanted = truncate_to_int32(params[o.wave_select_param]);
  const bool reload = mode_changed || state->initialised == 0 || wanted != state->*o.wave;
  if (!reload || !(loops || shapes)) return;
  state->*o.wave = wanted;
  loops ? load_voice_wave(o, state) : wsyn_fill_shape(wanted, state->*o.shape);
}

void commit_controls(const float* params, const oscillator& o, wsyn_state* state) {
  state->*o.coarse = params[o.coarse_param];
  state->*o.fine = params[o.fine_param];
  state->*o.pitch_source = params[o.pitch_source_param];
  state->*o.pitch_depth = params[o.pitch_depth_param];
  state->*o.lfo_control = params[o.lfo_rate_param];
  state->*o.lfo_step = state->*o.lfo_control * state->*o.lfo_control * 128.0F;
}

float octave_divisor(int32_t octave) {
  switch (octave) {
    case -2:
      return 4.0F;
    case -1:
      return 2.0F;
    case 1:
      return 0.5F;
    case 2:
      return 0.25F;
    default:
      return 1.0F;
  }
}

// Phase step of note 60 before tuning: 3.0375 entries at 440 Hz. The limits stop the reference pitch below 290 Hz and
// above 579 Hz; a pitch that isn't a number becomes the lower one.
double base_step(float scaled_pitch) {
  constexpr double fourth_root_of_2 = 1.189207115002721;   // three semitones: from A up to C, octaves aside
  constexpr double entries_per_hz = 0.005804988662131519;  // 256 / 44100
  return std::min(std::max(2.0, fourth_root_of_2 * scaled_pitch * entries_per_hz), 4.0);
}

// A pitch correction that depends on what is played: loops are brought to their root key, shapes 2 cents down.
double tuning_offset(float mode, float wave_select) {
  constexpr double shape_offset = -0.0016666666666666668;
  if (!(mode > 0.5F)) return shape_offset;
  const int32_t wave = truncate_to_int32(wave_select);
  return wave >= 0 && wave < sample_loop_count ? sample_loops[static_cast<size_t>(wave)].octave_offset : 0.0;
}

// Octaves. The rounding of each product to float is part of the tuning.
double tune(float coarse, float fine, double offset) {
  const float fine_octaves = fine * 0.00083333335F;    // 1 / 1200
  const float coarse_octaves = coarse * 0.083333336F;  // 1 / 12
  return static_cast<double>(fine_octaves) + static_cast<double>(coarse_octaves) + offset;
}

void fill_note_ratios(double tune, std::span<double, wsyn_voice_count> ratios) {
  for (int32_t note = 0; note < wsyn_voice_count; ++note) {
    ratios[static_cast<size_t>(note)] = std::exp2((note - 60) * 0.08333333333333333 + tune);
  }
}

void commit_tune(const float* params, const oscillator& o, wsyn_state* state) {
  const double offset = tuning_offset(state->mode, params[o.wave_select_param]);
  const double octaves = tune(state->*o.coarse, state->*o.fine, offset);
  if (state->initialised != 0 && octaves == state->*o.tune) return;  // as in most blocks, and powers are expensive
  state->*o.tune = octaves;
  fill_note_ratios(state->*o.tune, state->*o.note_ratio);
}

// What both oscillators share.
void commit_common(const float* params, wsyn_state* state) {
  state->rate_ratio = params[wsyn_param_rate_ratio];
  state->sync = params[wsyn_param_sync];
  state->ring = params[wsyn_param_ring];
  state->scaled_pitch = params[wsyn_param_reference_pitch] * state->rate_ratio;
  state->base_step = base_step(state->scaled_pitch);
  state->octave_divisor = octave_divisor(truncate_to_int32(params[wsyn_param_octave]));
}

// --- Filter ---

float smoothed_cutoff(const wsyn_state& state) {
  return (state.cutoff_now * 3000.0F + state.cutoff_target) * 0.00033322227F;  // 1 / 3001
}

// std::pow(x, 6) rounded to float, without its cost. The square of a float is exact in double, and the rounding
// of the other two products never reaches the float: all 2^23 significands have been tried.
float sixth_power(float x) {
  const double square = static_cast<double>(x) * static_cast<double>(x);
  return static_cast<float>(square * square * square);
}

void derive_filter(wsyn_state* state) {
  const float c = state->cutoff_now;
  const float feedback = sixth_power(1.0F - c) * 100.0F;
  state->filter_feedback = feedback;
  state->filter_scale = 1.0F / (feedback + 1.0F);
  state->filter_amount = (c + 1.0F) * 0.5F * state->filter_gain;
}

void commit_filter(const float* params, wsyn_state* state) {
  const float resonance = params[wsyn_param_resonance];
  state->cutoff_target = params[wsyn_param_cutoff] * 0.8F;
  state->filter_gain = static_cast<float>((resonance * 2.0F - resonance * resonance) * 2.2079999999999997);
  state->shaper_drive = params[wsyn_param_drive] * 4.0F;
  state->cutoff_now = smoothed_cutoff(*state);
  derive_filter(state);
}

// --- Rendering ---

template <typename Player>
float render_voice(const Player& player, float ratio1, float ratio2, voice_record* voice, const wsyn_state& state) {
  const wsyn_voice_group group = {1, {voice}, {ratio1}, {ratio2}};
  oscillator_lanes lanes = load_oscillators(group, state);
  const float4 samples = player.next(&lanes);
  store_phases(lanes, group);
  return samples[0];
}

// --- Pitch modulation ---

// Position of one LFO: reads its sine and moves on.
double lfo_value(const wsyn_state& state, float step, float* phase) {
  const int32_t i = truncate_to_int32(*phase);
  const bool inside = i >= 0 && i < wsyn_sine_entries;
  *phase += step;
  if (*phase >= static_cast<float>(wsyn_sine_entries)) *phase -= static_cast<float>(wsyn_sine_entries);
  return inside ? static_cast<double>(state.sine_table[i]) : 0.0;
}

double pitch_modulation(float level, int32_t crossings, const oscillator& o, wsyn_state* state) {
  constexpr double per_crossing = 0.01594387755102041;  // 1 / 62.72
  const float source = state->*o.pitch_source;
  const double depth = double{state->*o.pitch_depth};
  if (source == 0.0F) return lfo_value(*state, state->*o.lfo_step, &(state->*o.lfo_phase)) * depth + 1.0;
  if (source == 1.0F) return static_cast<double>(level) * depth + 1.0;
  if (source == 2.0F) return static_cast<double>(static_cast<float>(crossings * per_crossing)) * depth + 1.0;
  return 1.0;
}

// Wrapping takes one wrap length off a phase per sample. From beyond this limit, which the level of a hot modulator can
// reach, that would take longer than 0.7 s, or for ever where the subtraction is lost in rounding.
constexpr float furthest_phase = 0x1p25F;

float phase_or_start(float phase) {
  return phase <= furthest_phase ? phase : 0.0F;  // NaN isn't
}

void restart_lost_phases(wsyn_state* state) {
  for (voice_record& voice : state->voices) {
    voice.phase1 = phase_or_start(voice.phase1);
    voice.phase2 = phase_or_start(voice.phase2);
  }
}

}  // namespace

void wsyn_commit(const float* params, wsyn_state* state) {
  const float mode = params[wsyn_param_sampled];
  const bool mode_changed = truncate_to_int32(state->mode) != truncate_to_int32(mode);
  state->mode = mode;
  state->committing = 1;
  if (state->initialised == 0) first_commit(state);
  commit_common(params, state);
  for (const oscillator& o : oscillators) {
    commit_table(params, mode_changed, o, state);
    commit_controls(params, o, state);
    commit_tune(params, o, state);
  }
  commit_filter(params, state);
  state->initialised = 1;
  state->committing = 0;
}

void wsyn_select_render(wsyn_state* state) {
  if (state->render == nullptr) state->render = render_sum;
  const bool sync = state->sync > 0.5F;
  const bool ring = state->ring > 0.5F;
  const bool no_sync = state->sync < 0.5F;
  const bool no_ring = state->ring < 0.5F;
  if (state->mode > 0.5F) {
    state->render = render_sampled;
  } else if (state->mode < 0.5F) {
    if (no_sync && no_ring) state->render = render_sum;
    if (no_sync && ring) state->render = render_ring;
    if (sync && no_ring) state->render = render_sum_sync;
    if (sync && ring) state->render = render_ring_sync;
  }
}

float render_sum(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state) {
  return render_voice(shape_player<coupling::free, mixing::sum>(*state), ratio1, ratio2, voice, *state);
}

float render_sum_sync(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state) {
  return render_voice(shape_player<coupling::sync, mixing::sum>(*state), ratio1, ratio2, voice, *state);
}

float render_ring_sync(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state) {
  return render_voice(shape_player<coupling::sync, mixing::ring>(*state), ratio1, ratio2, voice, *state);
}

float render_ring(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state) {
  return render_voice(shape_player<coupling::free, mixing::ring>(*state), ratio1, ratio2, voice, *state);
}

float render_sampled(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state) {
  return render_voice(loop_player(*state), ratio1, ratio2, voice, *state);
}

void wsyn_modulate_pitch(float level, int32_t crossings, wsyn_state* state) {
  restart_lost_phases(state);
  for (const oscillator& o : oscillators) state->*o.pitch_mod = pitch_modulation(level, crossings, o, state);
}

bool wsyn_advance_filter(wsyn_state* state) {
  const float next = smoothed_cutoff(*state);
  // Settled: the derived values would be the same, and a power per sample is expensive.
  if (std::bit_cast<uint32_t>(next) == std::bit_cast<uint32_t>(state->cutoff_now)) return false;
  state->cutoff_now = next;
  derive_filter(state);
  return true;
}
