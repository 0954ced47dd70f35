// MIT License. The record of the carrier synthesizer: two table oscillators per note, one voice per MIDI note.
#pragma once

#include <cstdint>

#include "dsp/sample_loops.h"

struct wsyn_state;

// What one note keeps between samples. Nine 32-bit members, cleared together when the note becomes idle.
struct voice_record {
  int32_t state = 0;    // 0 idle, 1 held, -1 releasing, -2 kept by sustain
  float level = 0.0F;   // envelope, 0 to 1
  float phase1 = 0.0F;  // oscillator phases in table entries
  float phase2 = 0.0F;
  float filter[5] = {};  // stages of the voice filter
};
static_assert(sizeof(voice_record) == 9 * sizeof(int32_t));

// Renders one sample of one note: the two ratios are the note's entries of note_ratio1 and note_ratio2, rounded to
// float. Only phase1 and phase2 of the voice change.
using wsyn_render_fn = float (*)(float ratio1, float ratio2, voice_record* voice, const wsyn_state* state);

// Entries of the parameter block that a commit takes.
enum wsyn_param : int32_t {
  wsyn_param_rate_ratio,       // 44100 / core rate
  wsyn_param_reference_pitch,  // Hz of the tuning A, normally 440
  wsyn_param_octave,           // -2 to 2, truncated
  wsyn_param_sampled,          // above 0.5 sample loops, below computed shapes
  wsyn_param_wave_select1,     // shape or loop number, truncated
  wsyn_param_wave_select2,
  wsyn_param_sync,           // above 0.5 oscillator 1 resets oscillator 2
  wsyn_param_ring,           // above 0.5 the oscillators are multiplied instead of added
  wsyn_param_coarse1,        // semitones
  wsyn_param_fine1,          // cents
  wsyn_param_pitch_source1,  // 0 sine LFO, 1 modulator level, 2 modulator zero crossings, anything else none
  wsyn_param_pitch_depth1,   // scale of that source
  wsyn_param_lfo_rate1,      // LFO rate control
  wsyn_param_coarse2,
  wsyn_param_fine2,
  wsyn_param_pitch_source2,
  wsyn_param_pitch_depth2,
  wsyn_param_lfo_rate2,
  wsyn_param_cutoff,     // 0 to 1
  wsyn_param_resonance,  // 0 to 1
  wsyn_param_drive,      // amount of the wave shaper
};
constexpr int32_t wsyn_param_count = 21;
static_assert(wsyn_param_drive + 1 == wsyn_param_count);

constexpr int32_t wsyn_voice_count = 128;
constexpr int32_t wsyn_shape_cycle = 1024;                    // entries of one computed cycle
constexpr int32_t wsyn_shape_entries = wsyn_shape_cycle + 1;  // and the guard point for interpolation
constexpr int32_t wsyn_voice_wave_entries = 100000;           // holds the longest loop
constexpr int32_t wsyn_sine_entries = 1024;
constexpr int32_t wsyn_note_slots = 32;
constexpr uint32_t wsyn_magic = 0x7773796e;  // "wsyn"

// A sample loop as an oscillator plays it, followed by silence.
using wsyn_voice_wave = float[wsyn_voice_wave_entries];

// Some 420 kB, so it belongs on the heap, zeroed; a zeroed record is one before its first commit. Owned by one thread.
// It points into itself while an oscillator plays the noise loop, so it can't be copied.
struct wsyn_state {
  wsyn_state() = default;
  wsyn_state(const wsyn_state&) = delete;
  wsyn_state& operator=(const wsyn_state&) = delete;

  uint32_t magic = 0;       // for a debugger: wsyn_magic from the first commit on
  int32_t initialised = 0;  // 1 from the end of the first commit on
  int32_t committing = 0;   // for a debugger: 1 during a commit

  float rate_ratio = 0.0F;
  float scaled_pitch = 0.0F;    // reference pitch times rate ratio, Hz
  float octave_divisor = 0.0F;  // 4, 2, 1, 0.5 or 0.25
  float mode = 0.0F;            // below 0.5 computed shapes, above 0.5 sample loops
  int32_t wave1 = 0;            // number of the shape or loop that is loaded
  int32_t wave2 = 0;
  float sync = 0.0F;
  float ring = 0.0F;
  float bend = 0.0F;  // pitch bend as a ratio, 1 in the middle

  float coarse1 = 0.0F;  // semitones
  float fine1 = 0.0F;    // cents
  float pitch_source1 = 0.0F;
  float pitch_depth1 = 0.0F;
  float lfo_control1 = 0.0F;
  float lfo_step1 = 0.0F;  // entries of sine_table per frame
  float coarse2 = 0.0F;
  float fine2 = 0.0F;
  float pitch_source2 = 0.0F;
  float pitch_depth2 = 0.0F;
  float lfo_control2 = 0.0F;
  float lfo_step2 = 0.0F;

  float cutoff_now = 0.0F;  // smoothed towards cutoff_target, a step per sample
  float cutoff_target = 0.0F;
  float filter_gain = 0.0F;  // from the resonance
  float shaper_drive = 0.0F;
  float filter_feedback = 0.0F;  // these three follow cutoff_now
  float filter_scale = 0.0F;
  float filter_amount = 0.0F;

  int32_t wrap1 = 0;  // wrap lengths of voice_wave1 and voice_wave2
  int32_t wrap2 = 0;
  double base_step = 0.0;  // phase step in entries at ratio 1
  double tune1 = 0.0;      // octaves
  double tune2 = 0.0;
  float output_level = 0.0F;  // for a debugger: 1 after the first commit, 10 once samples have been rendered
  float lfo_phase1 = 0.0F;    // entries of sine_table
  float lfo_phase2 = 0.0F;
  double note_ratio1[wsyn_voice_count] = {};  // pitch of each MIDI note against note 60 untuned
  double note_ratio2[wsyn_voice_count] = {};
  double pitch_mod1 = 0.0;  // multipliers of the frame; 0 before the first frame, so that the oscillators don't move
  double pitch_mod2 = 0.0;

  float shape1[wsyn_shape_entries] = {};
  float shape2[wsyn_shape_entries] = {};
  wsyn_render_fn render = nullptr;  // chosen by wsyn_select_render

  // Of the store that all synthesizers share, but for the noise loop; null before the first commit.
  const wsyn_voice_wave* voice_wave1 = nullptr;  // the loops that the oscillators play
  const wsyn_voice_wave* voice_wave2 = nullptr;
  const float* sine_table = nullptr;  // one cycle, [wsyn_sine_entries]

  // The noise loop differs from record to record. It is drawn at the first commit, but filled in when it is first
  // played, which few sounds do.
  uint32_t noise_loop_seed = 0;  // the generator's state before its first sample
  int32_t noise_loop_filled = 0;
  wsyn_voice_wave noise_loop_wave = {};

  voice_record voices[wsyn_voice_count] = {};
  int32_t note_slots[wsyn_note_slots] = {};  // held notes; below 27 a slot is free
  int32_t sustain = 0;                       // pedal, 0 up
  // Bit n of the 128 is set while voices[n].state is not 0, so that the sample loop visits sounding voices alone.
  // Whoever writes a voice's state keeps it.
  uint64_t sounding[2] = {};
};
