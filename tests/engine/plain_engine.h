// MIT License. A plain engine from the two inputs to the mix: one bin, one band, one sample after the other, with all
// constants stated independently. It shares only the Fourier transform, the linear predictions and the wavelet modes
// with the engine; these have plain versions of their own.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <vector>

#include "dsp/fft.h"
#include "engine/prediction_modes.h"
#include "engine/voco_state.h"
#include "engine/wavelet_modes.h"
#include "tests/engine/engine_words.h"

namespace plain {

constexpr size_t frame_length = 1024;
constexpr size_t hop = 512;
constexpr size_t bins_in_use = 512;

using frame = std::array<float, frame_length>;

struct bin {
  float re = 0.0F;
  float im = 0.0F;
};
using spectrum = std::array<bin, frame_length>;

inline float length(bin z) {
  return std::sqrt(z.re * z.re + z.im * z.im);
}
inline float angle(bin z) {
  return static_cast<float>(std::atan2(double{z.im}, double{z.re}));
}
inline bin polar(float amplitude, float phase) {
  return {amplitude * static_cast<float>(std::cos(double{phase})),
          amplitude * static_cast<float>(std::sin(double{phase}))};
}

inline float fast_angle(bin z) {
  if (z.re == 0.0F) return z.im > 0.0F ? 1.5707964F : z.im == 0.0F ? 0.0F : -1.5707964F;
  const float q = z.im / z.re;
  if (std::fabs(q) >= 1.0F) {
    const float t = 1.5707964F - q / (q * q + 0.28F);
    return z.im >= 0.0F ? t : t - 3.1415927F;
  }
  const float t = q / (q * q * 0.28F + 1.0F);
  if (z.re >= 0.0F) return t;
  return z.im >= 0.0F ? t + 3.1415927F : t - 3.1415927F;
}

inline void transform(void (*direction)(float*, int32_t, const float*), spectrum* data) {
  int32_t log2_size = 0;
  std::array<float, frame_length / 4 + 1> table;
  fft_cos_table_init(&log2_size, frame_length, table.data());
  std::vector<float> parts;
  for (const bin z : *data) parts.insert(parts.end(), {z.re, z.im});
  direction(parts.data(), log2_size, table.data());
  for (size_t k = 0; k < frame_length; ++k) (*data)[k] = {parts[2 * k], parts[2 * k + 1]};
}

// --- Windows ---

inline float hann(size_t i) {
  const float turn = static_cast<float>(i) * 6.2831855F * 0.0009765625F;
  return 0.5F - 0.5F * static_cast<float>(std::cos(double{turn}));
}
inline float welch(size_t i) {
  const float offset = (static_cast<float>(i) - 512.0F) * 0.001953125F;
  return 1.0F - offset * offset;
}
// Slopes of 128 samples.
inline float trapezoid(size_t i) {
  const double height = i <= 128 ? double(i) / 128.0 : i > 896 ? double(1024 - i) / 128.0 : 1.0;
  return static_cast<float>(2.5 * height);
}

// --- Smoothing: the middle of the inverse transform, under a Blackman window of `width` ---

inline std::vector<float> smoothed(const frame& magnitudes, size_t width) {
  spectrum z{};
  for (size_t k = 0; k <= 512; ++k) {
    const double half_turns = std::numbers::pi * static_cast<double>(k);
    z[k] = {magnitudes[k] * static_cast<float>(std::cos(half_turns)),
            magnitudes[k] * static_cast<float>(std::sin(half_turns))};
  }
  transform(fft_inverse, &z);
  for (size_t i = 0; i < frame_length; ++i) {
    float window = 0.0F;
    if (i >= 512 - width / 2 && i <= 512 + width / 2) {
      const double turn = 2.0 * std::numbers::pi * static_cast<double>(i - (512 - width / 2)) / double(width);
      window = 0.42F - 0.5F * static_cast<float>(std::cos(turn)) + 0.08F * static_cast<float>(std::cos(2.0 * turn));
    }
    z[i] = {z[i].re * window, 0.0F};
  }
  transform(fft_forward, &z);
  std::vector<float> result;
  for (size_t k = 0; k <= 512; ++k) result.push_back(2.0F * length(z[k]));
  return result;
}

// --- Band-pass filters of modes 6 and 7 ---

constexpr float band_hz[25] = {100.0F,     200.0F,     300.0F,     400.0F,     500.0F,     600.0F,     720.0F,
                               864.0F,     1036.8F,    1244.16F,   1492.992F,  1791.5905F, 2149.9084F, 2579.8901F,
                               3095.8682F, 3715.0417F, 4458.0503F, 5349.6602F, 6419.5923F, 7703.5107F, 9244.2129F,
                               11093.056F, 13311.667F, 15974.0F,   21000.0F};

inline float band_q(int mode, int band) {
  const double root = std::pow(0.04 * band, 0.25);
  if (mode == 7) return static_cast<float>(5.0 * root + 1.0);
  return band <= 21 ? static_cast<float>(10.0 * root + 0.8) : 2.0F;
}

struct band_pass {
  float b0, b2, a1, a2;

  // 0 dB at the centre.
  band_pass(float frequency_hz, float q) {
    const double w = double{frequency_hz} * 2.0 * std::numbers::pi / 44100.0;
    const double alpha = std::sin(w) / (2.0 * double{q});
    const double d = 1.0 / (alpha + 1.0);
    b0 = static_cast<float>(alpha * d);
    b2 = static_cast<float>(-alpha * d);
    a1 = static_cast<float>(-2.0 * std::cos(w) * d);
    a2 = static_cast<float>((1.0 - alpha) * d);
  }

  // From rest, over the samples between the two iterators.
  template <typename Iterator>
  void run(Iterator first, Iterator last) const {
    float x1 = 0.0F, x2 = 0.0F, y1 = 0.0F, y2 = 0.0F;
    for (; first != last; ++first) {
      const float y = b0 * *first + b2 * x2 - a1 * y1 - a2 * y2;
      x2 = x1, x1 = *first;
      y2 = y1, y1 = y;
      *first = y;
    }
  }
};

inline float magnitude_sum(const frame& x) {
  float sum = 0.0F;
  for (const float sample : x) sum += std::fabs(sample);
  return sum;
}

// --- The engine ---

class engine {
 public:
  // `random` is the state of the random number generator.
  explicit engine(uint32_t random) : random_(random) {}

  // What the frame's measurement comes to.
  float level = 0.0F;
  int crossings = 0;
  double draw_a = 0.0;
  double draw_b = 0.0;

  // Plays the hop that is complete and takes in the next, which completes a frame.
  stereo run_hop(const sound_values& values, const waveform& voice, const waveform& carrier) {
    take(values);
    stereo mix{waveform(hop), waveform(hop)};
    for (size_t i = 0; i < hop; ++i) {
      voice_[hop + i] = voice[i];
      carrier_[hop + i] = carrier[i];
      voice_so_far_.push_back(voice[i]);
      carrier_so_far_.push_back(carrier[i]);
      const size_t now = voice_so_far_.size() - 1;
      const float old_voice = now >= 1024 ? voice_so_far_[now - 1024] : 0.0F;
      const float old_carrier = now >= 1024 ? carrier_so_far_[now - 1024] : 0.0F;
      mix.left[i] = left_[i] * wet_ + old_voice * dry_voice_ + old_carrier * dry_carrier_;
      mix.right[i] = right_[i] * wet_ + old_voice * dry_voice_ + old_carrier * dry_carrier_;
    }
    step();
    return mix;
  }

 private:
  void take(const sound_values& v) {
    const auto unit = [](float x) { return std::clamp(x, 0.0F, 1.0F); };
    wet_ = unit(v[0]);
    dry_carrier_ = unit(v[1]) * 0.5F;
    dry_voice_ = unit(v[2]);
    mix_ = v[3];
    attack_ = v[4] * 32.0F;
    gain_ = v[4] * 2.0F + 1.0F;
    release_ = v[5] * 40.0F;
    average_ = v[6] * 8.0F;
    if (mode_ != static_cast<int>(v[7])) {
      for (frame* const x : {&fast_, &slow_, &target_, &carrier_level_, &carrier_phase_, &voice_phase_}) x->fill(0.0F);
    }
    mode_ = static_cast<int>(v[7]);
    sibilance_ = static_cast<int>(v[8]);
    noise_ = static_cast<int>(v[9]);
    frozen_ = static_cast<int>(v[10]) != 0;
  }

  int draw() {
    random_ = random_ * 214013U + 2531011U;
    return static_cast<int>(random_ >> 16 & 0x7fffU);
  }

  void step() {
    draw_a = draw() * 3.051851e-05;
    draw_b = draw() * 3.051851e-05;
    for (frame* const x : {&left_, &right_}) {
      std::copy_n(x->begin() + hop, hop, x->begin());
      std::fill_n(x->begin() + hop, hop, 0.0F);
    }
    measure();
    if (mode_ == 6) return add(filter_bank(1.125F, 2.025F), welch, 1.0F);
    if (mode_ == 7) return add(filter_bank(0.375F, 0.6F), welch, 5.5F);
    if (mode_ == 8) return add(prediction(10), welch, 5.5F);
    if (mode_ == 9) return add(prediction(35), welch, 5.5F);
    if (mode_ == 10) return add(prediction(80), welch, 5.5F);
    if (mode_ == 12 || mode_ == 13) return add(wavelets(), hann, 5.5F);
    if (mode_ == 14) return add(wavelets(), welch, 5.5F);
    add_quadrature(transform_path());
  }

  void measure() {
    crossings = 0;
    int last = 0;
    for (const float x : voice_) {
      const int sign = x > 0.0F ? 1 : x < 0.0F ? -1 : 2;  // zero has a sign of its own
      if (sign != last) ++crossings;
      last = sign;
    }
    level = magnitude_sum(voice_) * 0.0078125F;
  }

  float follow(size_t k, float m) {
    const float weight = m <= fast_[k] ? release_ : attack_;
    fast_[k] = (weight * fast_[k] + m) / (weight + 1.0F);
    slow_[k] = (average_ * slow_[k] + m) / (average_ + 1.0F);
    return gain_ * fast_[k] * 0.5F * mix_ + slow_[k] * (1.0F - mix_);
  }

  // --- Time domain ---

  // No louder than full scale, under the Welch window.
  static frame normalised(const frame& x) {
    float peak = 1.0F;
    for (const float sample : x) peak = std::max(peak, std::fabs(sample));
    const float scale = 1.0F / peak;
    frame result;
    for (size_t i = 0; i < frame_length; ++i) result[i] = scale * x[i] * welch(i);
    return result;
  }

  void add(const frame& result, float (*window)(size_t), float gain) {
    for (size_t i = 0; i < frame_length; ++i) {
      const float y = result[i] * window(i) * gain;
      left_[i] += y;
      right_[i] += y;
    }
    shift();
  }

  void shift() {
    for (frame* const x : {&voice_, &carrier_}) std::copy_n(x->begin() + hop, hop, x->begin());
  }

  frame filter_bank(float carrier_gain, float sibilance_gain) {
    frame sum{};
    for (size_t band = 0; band < 25; ++band) {
      frame m = normalised(voice_);
      frame c = normalised(carrier_);
      const band_pass filter(band_hz[band], band_q(mode_, static_cast<int>(band)));
      for (frame* const x : {&m, &c}) {
        filter.run(x->begin(), x->end());
        mode_ == 6 ? filter.run(x->rbegin(), x->rend()) : filter.run(x->begin(), x->end());
      }
      if (!frozen_) target_[band] = magnitude_sum(m) / 1024.0F;
      const float v = follow(band, target_[band]);
      const float flatten = 1.0F / std::max(magnitude_sum(c) / 1024.0F, 0.001F);
      for (size_t i = 0; i < frame_length; ++i) {
        sum[i] += c[i] * flatten * v * carrier_gain;
        if (sibilance_ == 1 && band >= 16) sum[i] += m[i] * sibilance_gain;
      }
    }
    return sum;
  }

  frame prediction(int32_t order) {
    frame result = normalised(voice_);
    const frame carrier = normalised(carrier_);
    vocoder_prediction(order, result.data(), carrier.data(), 1024, &judged_elsewhere_->prediction,
                       &judged_elsewhere_->arena);
    return result;
  }

  frame wavelets() {
    frame result = normalised(voice_);
    const frame carrier = normalised(carrier_);
    voco_state* const state = judged_elsewhere_.get();
    if (mode_ == 12) vocoder_wavelet(result.data(), carrier.data(), 1024, state);
    if (mode_ == 13) vocoder_wavelet_pair(wavelet_pair::split_by_level, result.data(), carrier.data(), 1024, state);
    if (mode_ == 14) vocoder_wavelet_pair(wavelet_pair::long_only, result.data(), carrier.data(), 1024, state);
    return result;
  }

  // --- Spectrum ---

  spectrum transform_path() {
    split();
    if (noise_ >= 1 && unvoiced_ratio() > 1.0F) {
      for (size_t k = 0; k < bins_in_use; ++k) {
        const auto amplitude = static_cast<float>(draw() * 9.155552842799158e-05);
        const auto phase = static_cast<float>((draw() * 6.103701895199438e-05 - 1.0) * 2.0 * std::numbers::pi);
        y_[k] = polar(amplitude, phase);
      }
    }
    if (!frozen_) std::copy_n(x_.begin(), bins_in_use, held_.begin());
    spectrum output = vocoded();
    if (sibilance_ >= 1) {
      for (size_t k = 128; k < bins_in_use; ++k) {
        output[k].re += 3.0F * held_[k].re;
        output[k].im += 3.0F * held_[k].im;
      }
    }
    transform(fft_inverse, &output);
    return output;
  }

  // One transform for two real signals.
  void split() {
    spectrum z;
    for (size_t i = 0; i < frame_length; ++i) z[i] = {voice_[i] * hann(i), carrier_[i] * hann(i)};
    transform(fft_forward, &z);
    x_[0] = {z[0].re, 0.0F};
    y_[0] = {z[0].im, 0.0F};
    for (size_t k = 1; k <= 512; ++k) {
      const bin a = z[k];
      const bin b = z[1024 - k];
      x_[k] = {(a.re + b.re) * 0.5F, (a.im - b.im) * 0.5F};
      y_[k] = {(a.im + b.im) * 0.5F, (b.re - a.re) * 0.5F};
      x_[1024 - k] = {x_[k].re, -x_[k].im};
      y_[1024 - k] = {y_[k].re, -y_[k].im};
    }
  }

  float unvoiced_ratio() const {
    float low = 0.0F;
    float high = 0.0F;
    for (size_t k = 0; k < 64; ++k) low += length(x_[k]);
    for (size_t k = 64; k < 512; ++k) high += length(x_[k]);
    return low * 0.015625F > 0.0001F ? (high * 0.002232143F) / (low * 0.015625F) : 0.0F;
  }

  spectrum vocoded() {
    if (mode_ == 0) return geometric_mean();
    if (mode_ == 1) return two_bin_bands();
    if (mode_ == 2) return shaped(carrier_phase_);
    if (mode_ == 3) return smooth(512);
    if (mode_ == 4) return smooth(128);
    if (mode_ == 5) return smooth(32);
    if (mode_ == 11) return shaped(voice_phase_);
    return y_;
  }

  spectrum geometric_mean() {
    spectrum output{};
    for (size_t k = 0; k < bins_in_use; ++k) {
      const float v = follow(k, length(x_[k]));
      if (!frozen_) target_[k] = v;
      const float p = target_[k] * length(y_[k]);
      const float amplitude = std::sqrt(p) * 1.5F + p * (static_cast<float>(k) * 0.5F) * 0.1F;
      output[k] = polar(0.25F * amplitude, angle(y_[k]));
    }
    return output;
  }

  // 256 bands, and as many more that find nothing.
  spectrum two_bin_bands() {
    spectrum output{};
    for (size_t k = 0; k < 512; ++k) {
      const bin a = k < 256 ? x_[2 * k] : bin{};
      const bin b = k < 256 ? x_[2 * k + 1] : bin{};
      const float sum = std::fabs(a.re) + std::fabs(a.im) + std::fabs(b.re) + std::fabs(b.im);
      follow(k, sum * (static_cast<float>(k) * 0.5F + 1.0F));
      if (!frozen_) target_[k] = (gain_ * fast_[k] * 0.025F * mix_ + slow_[k] * 0.05F * (1.0F - mix_)) * 0.35F;
      if (k >= 256) continue;
      for (const size_t j : {2 * k, 2 * k + 1}) output[j] = {y_[j].re * target_[k], y_[j].im * target_[k]};
    }
    return output;
  }

  void analyse(float (*angle_of)(bin)) {
    for (size_t k = 0; k < bins_in_use; ++k) {
      float v = follow(k, length(x_[k]));
      const float c = length(y_[k]);
      float phase = angle_of(y_[k]);
      if (!frozen_) {
        if (c < 0.0001F) v = phase = 0.0F;
        target_[k] = mode_ == 11 ? c * v * (static_cast<float>(k) * 0.001953125F + 0.01F) : v;
        voice_phase_[k] = angle_of(x_[k]);
      }
      carrier_level_[k] = c;
      carrier_phase_[k] = phase;
    }
  }

  spectrum shaped(const frame& phase) {
    analyse(angle);
    spectrum output{};
    for (size_t k = 0; k < bins_in_use; ++k) output[k] = polar(4.0F * target_[k], phase[k]);
    return output;
  }

  // The carrier, flattened by its own envelope, under that of the voice.
  spectrum smooth(size_t width) {
    analyse(fast_angle);
    const std::vector<float> voice_envelope = smoothed(target_, width);
    const std::vector<float> carrier_envelope = smoothed(carrier_level_, width);
    spectrum output{};
    for (size_t k = 0; k <= 512; ++k) {
      float q = 1.0F;
      if (carrier_envelope[k] > 0.001F) q = std::min(carrier_level_[k] / carrier_envelope[k], 1.0F);
      output[k] = polar(4.5F * q * voice_envelope[k], carrier_phase_[k]);
    }
    return output;
  }

  void add_quadrature(const spectrum& z) {
    for (size_t i = 0; i < frame_length; ++i) {
      const float w = trapezoid(i) * 0.3333F;
      left_[i] += (z[i].re * 0.25F + z[i].im) * w;
      right_[i] += (z[i].im * 0.25F + z[i].re) * w;
    }
    shift();
  }

  uint32_t random_;
  frame voice_{}, carrier_{}, left_{}, right_{};
  waveform voice_so_far_, carrier_so_far_;
  float wet_ = 0.0F, dry_carrier_ = 0.0F, dry_voice_ = 0.0F;
  float mix_ = 0.0F, attack_ = 0.0F, gain_ = 0.0F, release_ = 0.0F, average_ = 0.0F;
  int mode_ = 0, sibilance_ = 0, noise_ = 0;
  bool frozen_ = false;
  spectrum x_{}, y_{};
  std::array<bin, bins_in_use> held_{};
  frame fast_{}, slow_{}, target_{}, carrier_level_{}, carrier_phase_{}, voice_phase_{};
  std::unique_ptr<voco_state> judged_elsewhere_ = std::make_unique<voco_state>();
};

}  // namespace plain
