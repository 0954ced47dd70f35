// MIT License. Helpers of the engine's tests: sounds, signals and measurements.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <memory>
#include <numbers>
#include <numeric>
#include <vector>

#include "dsp/oscillators.h"
#include "engine/modes.h"
#include "engine/parameter_commit.h"
#include "engine/sound_values.h"
#include "engine/voco_state.h"
#include "engine/vocoder.h"
#include "tests/words/signals.h"

using waveform = std::vector<float>;

struct stereo {
  waveform left;
  waveform right;
};

struct instance_deleter {
  void operator()(vocoder_instance* instance) const { vocoder_destroy(instance); }
};
using instance_ptr = std::unique_ptr<vocoder_instance, instance_deleter>;

inline instance_ptr make_instance(float sample_rate = 44100.0F) {
  return instance_ptr(vocoder_create(sample_rate));
}

// A plain sound: everything wet, computed saws at concert pitch as the carrier, open filter, no modulation.
inline sound_values plain_sound(float mode) {
  sound_values v{};
  v[value_wet_gain] = 1.0F;
  v[value_mode] = mode;
  v[value_cutoff] = 1.0F;
  v[value_internal_carrier] = 1.0F;
  v[value_tuning] = 440.0F;
  v[value_octave] = 1.0F;
  v[value_wave1] = 1.0F;
  v[value_wave2] = 1.0F;
  v[value_pitch_source1] = 3.0F;
  v[value_pitch_source2] = 3.0F;
  return v;
}

// The plain sound with the second input as its carrier.
inline sound_values external_carrier_sound(float mode) {
  sound_values v = plain_sound(mode);
  v[value_internal_carrier] = 0.0F;
  return v;
}

// A signal state after the commit of `sound`, its synthesizer ready to render unmodulated.
inline std::unique_ptr<voco_state> committed(const sound_values& sound, float core_rate = 44100.0F) {
  auto state = std::make_unique<voco_state>();
  voco_params params = voco_params_from(sound, 0.0F, core_rate);
  voco_commit(&params, state.get());
  wsyn_select_render(&state->synth);
  state->synth.pitch_mod1 = state->synth.pitch_mod2 = 1.0;
  return state;
}

// Effects that are switched on in addition to the sound.
struct effect_switches {
  int32_t chorus = 0;
  int32_t reverb = 0;
};

// Runs the two signals through `instance` in blocks of `block` samples. An empty carrier is a null input.
inline stereo run(const sound_values& sound, const waveform& modulator, const waveform& carrier, int32_t block,
                  vocoder_instance* instance, effect_switches effects = {}) {
  stereo out{waveform(modulator.size()), waveform(modulator.size())};
  for (size_t start = 0; start < modulator.size(); start += static_cast<size_t>(block)) {
    const auto frames = static_cast<int32_t>(std::min(modulator.size() - start, static_cast<size_t>(block)));
    const float* const inputs[4] = {modulator.data() + start, nullptr,
                                    carrier.empty() ? nullptr : carrier.data() + start, nullptr};
    float* const outputs[2] = {out.left.data() + start, out.right.data() + start};
    const int32_t refused = vocoder_process(sound, effects.chorus, effects.reverb, frames, inputs, outputs, instance);
    if (refused != 0) return {};
  }
  return out;
}

inline stereo run_fresh(const sound_values& sound, const waveform& modulator, const waveform& carrier = {},
                        int32_t block = 512) {
  return run(sound, modulator, carrier, block, make_instance().get());
}

inline waveform silence(size_t count) {
  return waveform(count, 0.0F);
}

// The signal under a parabola that is 0 at either end.
inline waveform windowed(waveform x) {
  for (size_t t = 0; t < x.size(); ++t) {
    const float u = (2.0F * static_cast<float>(t) + 1.0F) / static_cast<float>(x.size()) - 1.0F;
    x[t] *= 1.0F - u * u;
  }
  return x;
}

inline waveform sine(size_t count, double frequency_hz, double level, double rate_hz = 44100.0) {
  waveform out(count);
  for (size_t i = 0; i < count; ++i) {
    const double turn = 2.0 * std::numbers::pi * frequency_hz * static_cast<double>(i) / rate_hz;
    out[i] = static_cast<float>(level * std::sin(turn));
  }
  return out;
}

// A voice-like source: harmonics of 110 Hz that are loudest around `formant_hz`.
inline waveform vowel(size_t count, double formant_hz, double level) {
  waveform out(count, 0.0F);
  for (int harmonic = 1; harmonic < 150; ++harmonic) {
    const double frequency = 110.0 * harmonic;
    const double octaves_off = std::log2(frequency / formant_hz);
    const double amplitude = level * std::exp(-octaves_off * octaves_off * 12.0);
    const double start = harmonic * harmonic * 0.7;
    for (size_t i = 0; i < count; ++i) {
      const double turn = 2.0 * std::numbers::pi * frequency * static_cast<double>(i) / 44100.0;
      out[i] += static_cast<float>(amplitude * std::cos(turn + start));
    }
  }
  return out;
}

// Magnitude of the Hann-windowed signal at one frequency; a sine of level 1 gives 1.
inline double level_at(const waveform& x, size_t start, size_t count, double frequency_hz, double rate_hz = 44100.0) {
  const std::complex<double> turn = std::polar(1.0, -2.0 * std::numbers::pi * frequency_hz / rate_hz);
  const std::complex<double> window_turn = std::polar(1.0, 2.0 * std::numbers::pi / static_cast<double>(count));
  std::complex<double> sum = 0.0;
  std::complex<double> phase = 1.0;
  std::complex<double> window = 1.0;
  for (size_t i = 0; i < count; ++i) {
    sum += (0.5 - 0.5 * window.real()) * static_cast<double>(x[start + i]) * phase;
    phase *= turn;
    window *= window_turn;
  }
  return std::abs(sum) * 4.0 / static_cast<double>(count);
}

inline double decibels(double power_ratio) {
  return 10.0 * std::log10(power_ratio);
}

// Frequency of the partial nearest to `near_hz`, by climbing the windowed spectrum's peak.
inline double partial_hz(const waveform& x, size_t start, size_t count, double near_hz, double rate_hz = 44100.0) {
  double low = near_hz * 0.985;
  double high = near_hz * 1.015;
  for (int i = 0; i < 40; ++i) {
    const double a = low + (high - low) * 0.382;
    const double b = low + (high - low) * 0.618;
    if (level_at(x, start, count, a, rate_hz) < level_at(x, start, count, b, rate_hz)) {
      low = a;
    } else {
      high = b;
    }
  }
  return 0.5 * (low + high);
}

inline double cents(double frequency_hz, double reference_hz) {
  return 1200.0 * std::log2(frequency_hz / reference_hz);
}

inline double note_hz(int note) {
  return 440.0 * std::exp2((note - 69) / 12.0);
}

inline float peak(const waveform& x, size_t start = 0) {
  float result = 0.0F;
  for (size_t i = start; i < x.size(); ++i) result = std::max(result, std::fabs(x[i]));
  return result;
}

inline float largest_difference(const waveform& a, const waveform& b) {
  float result = 0.0F;
  for (size_t i = 0; i < a.size(); ++i) result = std::max(result, std::fabs(a[i] - b[i]));
  return result;
}

inline bool all_finite(const waveform& x) {
  return std::ranges::all_of(x, [](float sample) { return std::isfinite(sample); });
}

constexpr std::array<int, vocoder_mode_count> all_modes = [] {
  std::array<int, vocoder_mode_count> modes{};
  std::iota(modes.begin(), modes.end(), 0);
  return modes;
}();
