// MIT License.
#include "engine/wavelet_modes.h"

#include <gtest/gtest.h>

#include "dsp/wavelet.h"
#include "engine/dc_block.h"
#include "engine/voco_state.h"
#include "tests/dsp/plain_wavelet.h"
#include "tests/engine/engine_words.h"

namespace {

constexpr int32_t n = frame_size;
constexpr int32_t steps = 9;
constexpr int wavelet_modes[] = {12, 13, 14};

wavelet bound(int32_t number) {
  wavelet transform;
  wavelet_bind(*filter_set_of_number(number), &transform);
  return transform;
}

waveform windowed(waveform x) {
  for (size_t t = 0; t < x.size(); ++t) {
    const float u = (2.0F * static_cast<float>(t) + 1.0F) / static_cast<float>(x.size()) - 1.0F;
    x[t] *= 1.0F - u * u;
  }
  return x;
}

waveform frame_of_noise(float level, uint32_t seed) {
  return windowed(noise(n, level, seed));
}

waveform scaled(waveform x, float factor) {
  for (float& sample : x) sample *= factor;
  return x;
}

float magnitude(const waveform& x) {
  float sum = 0.0F;
  for (const float sample : x) sum += std::fabs(sample);
  return sum;
}

struct vocoder_on_frames {
  std::unique_ptr<voco_state> state = std::make_unique<voco_state>();

  waveform vocode(int mode, waveform modulator, const waveform& carrier) {
    if (mode == 12) {
      vocoder_wavelet(modulator.data(), carrier.data(), n, state.get());
    } else {
      vocoder_wavelet_pair(mode == 13 ? wavelet_pair::split_by_level : wavelet_pair::long_only, modulator.data(),
                           carrier.data(), n, state.get());
    }
    EXPECT_EQ(state->arena.used, 0);
    return modulator;
  }
};

// --- The modes in plain loops, both filter sets at full length ---

struct plain_frame {
  wavelet transform;
  waveform m;
  waveform c;

  plain_frame(int32_t number, const waveform& modulator, const waveform& carrier)
      : transform(bound(number)), m(modulator), c(carrier) {
    for (waveform* const x : {&m, &c}) {
      dc_block(x->data(), n);
      plain::forward(transform, x->data(), x->data(), n, steps);
    }
  }

  void shape(size_t s, float average) {
    float sm = 0.0F;
    float sc = 0.0F;
    for (size_t j = s; j < 2 * s; ++j) sm += std::fabs(m[j]);
    for (size_t j = s; j < 2 * s; ++j) sc += std::fabs(c[j]);
    const bool passes = sm > average * 0.5F && sc > 0.0001F;
    const float ratio = passes ? std::min(sm / sc, 10.0F) : 0.0F;
    const auto gain = static_cast<float>(std::pow(double{ratio}, 1.1));
    for (size_t j = s; j < 2 * s; ++j) m[j] = passes ? gain * c[j] : 0.0F;
  }

  float sum(size_t s) const {
    float sm = 0.0F;
    for (size_t j = s; j < 2 * s; ++j) sm += std::fabs(m[j]);
    return sm;
  }

  void clear(size_t first, size_t count) { std::fill_n(m.begin() + static_cast<std::ptrdiff_t>(first), count, 0.0F); }

  void finish() {
    clear(0, 2);
    plain::inverse(transform, m.data(), m.data(), n, steps);
  }
};

waveform plain_vocode(int mode, const waveform& modulator, const waveform& carrier, std::array<float, 10>& averages) {
  plain_frame first(mode == 12 ? 2 : 3, modulator, carrier);
  plain_frame second(10, modulator, carrier);
  size_t level = 0;
  for (size_t s = n / 2; s >= 1; s /= 2, ++level) {
    float& average = averages.at(level);
    average = mode == 14 ? 0.0F : (average * 100.0F + first.sum(s)) * 0.00990099F;
    first.shape(s, average);
    second.shape(s, average);
    if (mode == 12) continue;
    (mode == 13 && s > 32 ? second : first).clear(s, s);
  }
  first.finish();
  second.finish();
  waveform out(n);
  for (size_t i = 0; i < out.size(); ++i) {
    out[i] = mode == 12 ? first.m[i] * 0.16666667F : first.m[i] * 0.16666667F + second.m[i] * 0.16666667F;
  }
  return out;
}

TEST(WaveletModes, EqualPlainLoopsToTheLastBit) {
  for (const int mode : wavelet_modes) {
    vocoder_on_frames v;
    std::array<float, 10> averages{};
    float heard = 0.0F;
    for (uint32_t frame = 0; frame < 12; ++frame) {
      // Loud and quiet frames in turn, so that levels are passed, limited and gated.
      const float level = frame % 4 == 3 ? 0.002F : 0.8F;
      const waveform modulator = windowed(frame % 2 == 0 ? vowel(n, 900.0, level / 8) : noise(n, level, frame));
      const waveform carrier = frame_of_noise(frame % 3 == 2 ? 0.001F : 0.5F, 100 + frame);
      const waveform expected = plain_vocode(mode, modulator, carrier, averages);
      ASSERT_EQ(v.vocode(mode, modulator, carrier), expected) << "mode " << mode << ", frame " << frame;
      ASSERT_EQ(v.state->wavelet_level_avg, averages) << "mode " << mode << ", frame " << frame;
      heard += magnitude(expected);
    }
    EXPECT_GT(heard, 10.0F);
  }
}

TEST(WaveletModes, AreSilentWithoutModulatorOrCarrier) {
  for (const int mode : wavelet_modes) {
    vocoder_on_frames v;
    const waveform sound = frame_of_noise(0.5F, 1);
    EXPECT_EQ(v.vocode(mode, sound, silence(n)), silence(n)) << mode;
    EXPECT_EQ(v.vocode(mode, silence(n), sound), silence(n)) << mode;
    EXPECT_EQ(v.vocode(mode, silence(n), silence(n)), silence(n)) << mode;
  }
}

TEST(WaveletModes, PassOnsetsAndGateLevelsBelowHalfTheirAverage) {
  const waveform voice = frame_of_noise(0.5F, 1);
  const waveform carrier = frame_of_noise(0.5F, 2);
  for (const int mode : {12, 13}) {
    vocoder_on_frames v;
    for (int frame = 0; frame < 600; ++frame) v.vocode(mode, voice, carrier);  // the averages settle
    // In mode 13 the 76-tap levels meet averages of 6-tap ones, and may be somewhat above or below them.
    const waveform below = scaled(voice, mode == 12 ? 0.45F : 0.02F);
    EXPECT_GT(magnitude(v.vocode(mode, scaled(voice, 0.55F), carrier)), 1.0F) << mode;
    EXPECT_EQ(v.vocode(mode, below, carrier), silence(n)) << mode;
    EXPECT_GT(magnitude(v.vocode(mode, voice, carrier)), 1.0F) << mode;
    // Mode 14 has no gate, and after it the averages start anew.
    EXPECT_GT(magnitude(v.vocode(14, below, carrier)), 0.1F);
    EXPECT_EQ(v.state->wavelet_level_avg, (std::array<float, wavelet_level_count>{}));
    EXPECT_GT(magnitude(v.vocode(mode, below, carrier)), 0.1F) << mode;
  }
}

TEST(WaveletModes, LimitTheRatioToTen) {
  const waveform voice = frame_of_noise(0.9F, 1);
  for (const int mode : wavelet_modes) {
    vocoder_on_frames v;
    const float once = magnitude(v.vocode(mode, voice, scaled(voice, 0.05F)));
    const float twice = magnitude(v.vocode(mode, voice, scaled(voice, 0.025F)));
    // 20 and 40 times louder, and both limited: the output follows the carrier, at 10^1.1 / 6.
    EXPECT_NEAR(twice / once, 0.5F, 0.03F) << mode;
    EXPECT_LT(once, 0.05F * 12.6F / 6.0F * magnitude(voice) * 1.1F) << mode;
  }
}

// With a gate that only one level passes, the output is this level of the filters that are heard there.
TEST(WaveletModes, TakeTheFourHighestOctavesFromTheShortFiltersInMode13) {
  const waveform voice = frame_of_noise(0.5F, 1);
  const waveform carrier = frame_of_noise(0.5F, 2);
  for (const int mode : {12, 13}) {
    for (size_t level = 0; level < wavelet_level_count - 1; ++level) {
      vocoder_on_frames v;
      v.state->wavelet_level_avg.fill(1e6F);
      v.state->wavelet_level_avg.at(level) = 0.0F;
      waveform y = v.vocode(mode, voice, carrier);
      const int32_t number =
          mode == 12 ? filter_set_daubechies_4 : (level < 4 ? filter_set_daubechies_6 : filter_set_daubechies_76);
      plain::forward(bound(number), y.data(), y.data(), n, steps);
      const size_t s = size_t{n / 2} >> level;
      EXPECT_GT(magnitude(waveform(y.data() + s, y.data() + 2 * s)), 0.999F * magnitude(y)) << mode << ", " << s;
      EXPECT_GT(magnitude(y), 0.0F) << mode << ", " << s;
    }
  }
}

// In frames as the engine windows them, an offset is a slow hump. The octaves above don't notice it.
TEST(WaveletModes, IgnoreDc) {
  const waveform voice = noise(n, 0.3F);
  waveform with_dc = voice;
  for (float& sample : with_dc) sample += 0.3F;
  const waveform carrier = frame_of_noise(0.5F, 2);
  for (const int mode : wavelet_modes) {
    const wavelet transform = bound(mode == 12 ? filter_set_daubechies_4 : filter_set_daubechies_76);
    waveform expected = vocoder_on_frames().vocode(mode, windowed(voice), carrier);
    waveform y = vocoder_on_frames().vocode(mode, windowed(with_dc), carrier);
    for (size_t i = 0; i < y.size(); ++i) y[i] -= expected[i];
    for (waveform* const x : {&y, &expected}) plain::forward(transform, x->data(), x->data(), n, steps);
    EXPECT_LT(magnitude({y.begin() + 32, y.end()}), 0.02F * magnitude({expected.begin() + 32, expected.end()})) << mode;
  }
}

TEST(WaveletModes, LeaveTheModulatorAsItCameWhenTheArenaIsExhausted) {
  const waveform modulator = noise(n, 1.0F);
  for (const int mode : wavelet_modes) {
    vocoder_on_frames v;
    for (const int32_t capacity : {0, n, 2 * n, 2 * n + 512, mode == 13 ? 6 * n : 3 * n}) {
      v.state->arena.capacity = capacity;
      EXPECT_EQ(v.vocode(mode, modulator, modulator), modulator) << mode << ", " << capacity;
    }
    EXPECT_EQ(v.state->wavelet_level_avg[0], 0.0F) << mode;
  }
}

}  // namespace
