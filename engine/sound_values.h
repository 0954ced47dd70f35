// MIT License. The values that define a sound, by their place in its value list.
#pragma once

#include <array>
#include <cstdint>

// What each value does, with its range. Flags are on above 0.5 or, where noted, from 1 up; out-of-range values
// are used unchanged unless a clamp is named.
enum sound_value : int32_t {
  // mix
  value_wet_gain = 0,            // level of the vocoded signal, clamped to 0..1
  value_dry_carrier_gain = 1,    // level of the delayed carrier, clamped to 0..1, then halved
  value_dry_modulator_gain = 2,  // level of the delayed modulator, clamped to 0..1
  // envelope followers
  value_env_mix = 3,      // 1 peak follower, 0 average follower
  value_env_attack = 4,   // peak follower attack, 0 at once; also raises its gain
  value_env_release = 5,  // peak follower release, 0 at once
  value_env_average = 6,  // average follower smoothing, 0 none
  // algorithm
  value_mode = 7,          // vocoder algorithm 0..14, truncated
  value_sibilance_on = 8,  // from 1: the modulator's highs reach the output
  value_noise_on = 9,      // from 1: noise replaces the carrier in unvoiced frames
  value_freeze_on = 10,    // not 0 once truncated: holds the modulator's envelope
  value_swap = 11,         // the second input becomes the modulator, the first the carrier
  // reverb
  value_reverb_level = 12,  // 0..1
  value_reverb_size = 13,   // 0..1
  // synthesizer
  value_cutoff = 14,            // voice filter, 0..1
  value_resonance = 15,         // voice filter, 0..1
  value_drive = 16,             // wave shaper after the oscillators
  value_internal_carrier = 17,  // the carrier is the synthesizer, else the second input
  value_tuning = 18,            // reference pitch in Hz, effective from about 290 to 580
  value_octave = 19,            // -2..2, truncated
  value_unused = 20,
  value_sampled = 21,  // the oscillators read sample loops, else computed shapes
  value_wave1 = 22,    // number of the loop or shape, truncated
  value_wave2 = 23,
  value_sync = 24,           // oscillator 2 restarts with oscillator 1
  value_ring = 25,           // the oscillators are multiplied, else added
  value_coarse1 = 26,        // semitones
  value_fine1 = 27,          // cents
  value_pitch_source1 = 28,  // 0 sine LFO, 1 modulator level, 2 modulator zero crossings, other none
  value_pitch_depth1 = 29,   // scale of that source
  value_lfo_rate1 = 30,      // LFO rate control, squared
  value_coarse2 = 31,
  value_fine2 = 32,
  value_pitch_source2 = 33,
  value_pitch_depth2 = 34,
  value_lfo_rate2 = 35,
  // output
  value_output_gain_db = 36,
};

constexpr int32_t sound_value_count = 37;

using sound_values = std::array<float, sound_value_count>;
