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

TEST(WaveletModes, LeaveTheModulatorUnchangedWhenTheArenaIsExhausted) {
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
