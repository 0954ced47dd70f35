// MIT License. The values of one block, in the order in which the signal path takes them.
#pragma once

#include <array>
#include <cstdint>

#include "engine/sound_values.h"

enum voco_param : int32_t {
  param_wet = 0,
  param_dry_carrier = 1,
  param_dry_modulator = 2,
  param_env_mix = 3,
  param_env_attack = 4,
  param_env_release = 5,
  param_env_average = 6,
  param_chorus = 7,
  param_mode = 8,
  param_sibilance = 9,
  param_noise = 10,
  param_freeze = 11,
  param_reserved = 12,  // always 0: the swap of the inputs acts ahead of the signal path
  param_reverb_level = 13,
  param_reverb_size = 14,
  param_cutoff = 15,
  param_resonance = 16,
  param_drive = 17,
  param_internal_carrier = 18,
  param_tuning = 19,
  param_octave = 20,
  param_unused = 21,  // always 0
  param_sampled = 22,
  param_wave1 = 23,
  param_wave2 = 24,
  param_sync = 25,
  param_ring = 26,
  param_coarse1 = 27,
  param_fine1 = 28,
  param_pitch_source1 = 29,
  param_pitch_depth1 = 30,
  param_lfo_rate1 = 31,
  param_coarse2 = 32,
  param_fine2 = 33,
  param_pitch_source2 = 34,
  param_pitch_depth2 = 35,
  param_lfo_rate2 = 36,
  param_core_rate = 37,  // 44100 divided by the block's rate ratio
};

constexpr int32_t voco_param_count = 38;

using voco_params = std::array<float, voco_param_count>;

// Puts a sound's values, the chorus switch and the core rate into their places.
voco_params voco_params_from(const sound_values& values, float chorus, float core_rate);
