// MIT License. The envelope followers of the spectral and the filter-bank modes: per frame, per bin or band.
#pragma once

#include "dsp/lanes.h"
#include "engine/bad_samples.h"

// Settings of a frame's followers. The time base is the frame: a weight of w gives a time constant of about w hops.
struct follower_settings {
  float attack;     // weight of the past while the magnitude rises
  float release;    // weight of the past while it falls
  float smoothing;  // weight of the past of the average follower
  float peak_gain;  // slower attacks miss the peaks, so the peak follower gains with them
  float mix;        // 1 peak follower, 0 average follower
};

// The settings for a sound's values of the same names.
inline follower_settings follower_settings_of(float env_attack, float env_release, float env_average, float env_mix) {
  return {env_attack * 32.0F, env_release * 40.0F, env_average * 8.0F, env_attack * 2.0F + 1.0F, env_mix};
}

// Feeds `magnitude` to the two followers of one bin or band, or of four of them. A follower that an overflow has made
// infinite or not a number starts again at 0: the average of infinity and anything else would stay infinite.
inline void followers_advance(float magnitude, const follower_settings& settings, float* fast, float* slow) {
  const float last_fast = finite_or_zero(*fast);
  const float last_slow = finite_or_zero(*slow);
  const float weight = magnitude <= last_fast ? settings.release : settings.attack;
  *fast = (weight * last_fast + magnitude) / (weight + 1.0F);
  *slow = (settings.smoothing * last_slow + magnitude) / (settings.smoothing + 1.0F);
}
inline void followers_advance(float4 magnitude, const follower_settings& settings, float4* fast, float4* slow) {
  const float4 last_fast = finite_or_zero(*fast);
  const float4 last_slow = finite_or_zero(*slow);
  const float4 weight = magnitude <= last_fast ? splat(settings.release) : splat(settings.attack);
  *fast = (weight * last_fast + magnitude) / (weight + 1.0F);
  *slow = (settings.smoothing * last_slow + magnitude) / (settings.smoothing + 1.0F);
}

// The blend of the two followers, in the unit of the magnitudes.
template <typename Level>
Level followers_value(const follower_settings& settings, Level fast, Level slow) {
  return settings.peak_gain * fast * 0.5F * settings.mix + slow * (1.0F - settings.mix);
}
