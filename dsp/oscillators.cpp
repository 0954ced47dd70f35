// MIT License. The carrier's oscillators: from parameters to pitch, and one sample of one note.
#include "dsp/oscillators.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <span>

#include "dsp/convert.h"
#include "dsp/lanes.h"
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

void derive_filter(wsyn_state* state) {
  const float c = state->cutoff_now;
  const float feedback = static_cast<float>(std::pow(static_cast<double>(1.0F - c), 6.0)) * 100.0F;
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

// Wraps a step short of the cycle's 1024, which makes the shapes sound 1.7 cents sharp; shapes are tuned down for it.
constexpr float shape_wrap = 1023.0F;

// What the render functions differ in.
enum class coupling { free, sync };
enum class mixing { sum, ring };

// Entries by which a phase moves per sample.
float phase_step(double modulation, float ratio, const wsyn_state& state) {
  const double step = static_cast<double>(state.bend) * modulation * static_cast<double>(ratio) * state.base_step;
  return std::fabs(static_cast<float>(step)) * (1.0F / state.octave_divisor);
}

// Linear interpolation at two phases; 0 where the table has no two neighbours.
template <size_t entries>
double2 read(const float (&table)[entries], double2 phase) {
  const long2 inside = (phase > -1.0) & (phase < static_cast<double>(entries - 1));
  const double2 safe = inside ? phase : double2{};
  const auto i0 = static_cast<int32_t>(safe[0]);
  const auto i1 = static_cast<int32_t>(safe[1]);
  const float4 neighbours = __builtin_shufflevector(load2(table + i0), load2(table + i1), 0, 2, 1, 3);
  const double2 here = widened(lower(neighbours));
  const double2 next = widened(upper(neighbours));
  const double2 value = here + (next - here) * (safe - double2{static_cast<double>(i0), static_cast<double>(i1)});
  return inside ? value : double2{};
}

// Advances two phases and takes one wrap length off those that pass it.
//   returns  which did
long2 advance(double2 step, double wrap, double2* phase) {
  const double2 next = *phase + step;
  const long2 wrapped = next > wrap;
  *phase = widened(narrowed(wrapped ? next - wrap : next));
  return wrapped;
}

// Waveshaper of odd symmetry around |y| = 0.5; it leaves |y| of 0.25, 0.5 and 0.75 alone.
float4 shaped(double2 y01, double2 y23, float drive) {
  const float4 s = magnitude(joined(narrowed(y01), narrowed(y23))) - 0.5F;
  const float4 change = (magnitude(s) - 0.25F) * drive * s;
  return joined(narrowed(y01 + widened(lower(change))), narrowed(y23 + widened(upper(change))));
}

// The oscillators of two voices.
struct oscillator_pair {
  double2 phase1{};  // always of single precision
  double2 phase2{};
  double2 step1{};
  double2 step2{};
};

// Where the oscillators of two voices are read for one sample.
struct read_phases {
  double2 phase1;
  double2 phase2;
};

// The tables that all voices of a state play, with their wrap lengths, and how the oscillators are joined.
template <size_t entries, coupling oscillators, mixing mix>
struct renderer {
  const float (&table1)[entries];
  const float (&table2)[entries];
  float wrap1;
  float wrap2;

  read_phases advance_pair(oscillator_pair* pair) const {
    read_phases at;
    at.phase1 = pair->phase1;
    const long2 wrapped = advance(pair->step1, static_cast<double>(wrap1), &pair->phase1);
    if (oscillators == coupling::sync) pair->phase2 = wrapped ? double2{} : pair->phase2;
    at.phase2 = pair->phase2;
    advance(pair->step2, static_cast<double>(wrap2), &pair->phase2);
    return at;
  }

  double2 joined_at(const read_phases& at) const {
    const double2 y1 = read(table1, at.phase1);
    const double2 y2 = read(table2, at.phase2);
    return mix == mixing::ring ? y1 * y2 : y1 + y2;
  }
};

template <coupling oscillators, mixing mix>
auto shape_renderer(const wsyn_state& state) {
  return renderer<wsyn_shape_entries, oscillators, mix>{state.shape1, state.shape2, shape_wrap, shape_wrap};
}

auto loop_renderer(const wsyn_state& state) {
  return renderer<wsyn_voice_wave_entries, coupling::free, mixing::sum>{
      *state.voice_wave1, *state.voice_wave2, static_cast<float>(state.wrap1), static_cast<float>(state.wrap2)};
}

template <size_t pairs>
std::array<oscillator_pair, pairs> load_pairs(const wsyn_voice_group& group, const wsyn_state& state) {
  std::array<oscillator_pair, pairs> result;
  for (size_t lane = 0; lane < static_cast<size_t>(group.count); ++lane) {
    oscillator_pair& pair = result[lane / 2];
    pair.phase1[lane % 2] = static_cast<double>(group.voices[lane]->phase1);
    pair.phase2[lane % 2] = static_cast<double>(group.voices[lane]->phase2);
    pair.step1[lane % 2] = static_cast<double>(phase_step(state.pitch_mod1, group.ratio1[lane], state));
    pair.step2[lane % 2] = static_cast<double>(phase_step(state.pitch_mod2, group.ratio2[lane], state));
  }
  return result;
}

// The phases of all samples come first, as each waits for the one before; the reading then waits for nothing.
template <size_t pairs, typename Renderer>
void render_pairs(const Renderer& renderer, const wsyn_voice_group& group, int32_t n, const wsyn_state& state,
                  float* samples) {
  constexpr int32_t run_length = 64;
  std::array<std::array<read_phases, pairs>, run_length> phases;
  std::array<oscillator_pair, pairs> voices = load_pairs<pairs>(group, state);
  for (int32_t first = 0; first < n; first += run_length) {
    const auto count = static_cast<size_t>(std::min(run_length, n - first));
    for (size_t i = 0; i < count; ++i) {
      for (size_t p = 0; p < pairs; ++p) phases[i][p] = renderer.advance_pair(&voices[p]);
    }
    for (size_t i = 0; i < count; ++i, samples += wsyn_voice_group::lanes) {
      const double2 y01 = renderer.joined_at(phases[i][0]);
      const double2 y23 = pairs == 1 ? double2{} : renderer.joined_at(phases[i][pairs - 1]);
      store4(shaped(y01, y23, state.shaper_drive), samples);
    }
  }
  for (size_t lane = 0; lane < static_cast<size_t>(group.count); ++lane) {
    group.voices[lane]->phase1 = static_cast<float>(voices[lane / 2].phase1[lane % 2]);
    group.voices[lane]->phase2 = static_cast<float>(voices[lane / 2].phase2[lane % 2]);
  }
}

template <typename Renderer>
void render_group(const Renderer& renderer, const wsyn_voice_group& group, int32_t n, const wsyn_state& state,
                  float* samples) {
  static_assert(wsyn_voice_group::lanes == 4);
  group.count <= 2 ? render_pairs<1>(renderer, group, n, state, samples)
                   : render_pairs<2>(renderer, group, n, state, samples);
}

template <typename Renderer>
float render_voice(const Renderer& renderer, float ratio1, float ratio2, voice_record* voice, const wsyn_state& state) {
  std::array<float, wsyn_voice_group::lanes> row;
  render_pairs<1>(renderer, {1, {voice}, {ratio1}, {ratio2}}, 1, state, row.data());
  return row[0];
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
  return render_voice(shape_renderer<coupling::free, mixing::sum>(*state), ratio1, ratio2, voice, *state);
}

float render_sum_sync(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state) {
  return render_voice(shape_renderer<coupling::sync, mixing::sum>(*state), ratio1, ratio2, voice, *state);
}

float render_ring_sync(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state) {
  return render_voice(shape_renderer<coupling::sync, mixing::ring>(*state), ratio1, ratio2, voice, *state);
}

float render_ring(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state) {
  return render_voice(shape_renderer<coupling::free, mixing::ring>(*state), ratio1, ratio2, voice, *state);
}

float render_sampled(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state) {
  return render_voice(loop_renderer(*state), ratio1, ratio2, voice, *state);
}

void wsyn_render_group(const wsyn_voice_group& group, int32_t n, const wsyn_state* state, float* samples) {
  if (state->render == render_sum_sync)
    return render_group(shape_renderer<coupling::sync, mixing::sum>(*state), group, n, *state, samples);
  if (state->render == render_ring_sync)
    return render_group(shape_renderer<coupling::sync, mixing::ring>(*state), group, n, *state, samples);
  if (state->render == render_ring)
    return render_group(shape_renderer<coupling::free, mixing::ring>(*state), group, n, *state, samples);
  if (state->render == render_sampled) return render_group(loop_renderer(*state), group, n, *state, samples);
  render_group(shape_renderer<coupling::free, mixing::sum>(*state), group, n, *state, samples);
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
