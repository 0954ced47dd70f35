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

waveform vocode(int mode, waveform modulator, const waveform& carrier, voco_state* state) {
  const auto pair = mode == 13 ? wavelet_pair::split_by_level : wavelet_pair::long_only;
  mode == 12 ? vocoder_wavelet(modulator.data(), carrier.data(), n, state)
             : vocoder_wavelet_pair(pair, modulator.data(), carrier.data(), n, state);
  EXPECT_EQ(state->arena.used, 0);
  return modulator;
}

// --- The modes in plain loops, both filter sets at full length ---

struct plain_frame {
  wavelet transform;
  waveform m;
  waveform c;

  plain_frame(int32_t number, const waveform& modulator, const waveform& carrier) : m(modulator), c(carrier) {
    wavelet_bind(*filter_set_of_number(number), &transform);
    for (waveform* const x : {&m, &c}) {
      dc_block(x->data(), n);
      plain::forward(transform, x->data(), x->data(), n, steps);
    }
  }

  void shape(size_t s, float average) {
    const float sm = sum(m, s);
    const float sc = sum(c, s);
    const bool passes = sm > average * 0.5F && sc > 0.0001F;
    const float ratio = passes ? std::min(sm / sc, 10.0F) : 0.0F;
    const auto gain = static_cast<float>(std::pow(double{ratio}, 1.1));
    for (size_t j = s; j < 2 * s; ++j) m[j] = passes ? gain * c[j] : 0.0F;
  }

  static float sum(const waveform& x, size_t s) {
    float result = 0.0F;
    for (size_t j = s; j < 2 * s; ++j) result += std::fabs(x[j]);
    return result;
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
    average = mode == 14 ? 0.0F : (average * 100.0F + plain_frame::sum(first.m, s)) * 0.00990099F;
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
    const auto state = std::make_unique<voco_state>();
    std::array<float, 10> averages{};
    float heard = 0.0F;
    for (uint32_t frame = 0; frame < 12; ++frame) {
      // Loud and quiet frames in turn, so that levels are passed, limited and gated.
      const float level = frame % 4 == 3 ? 0.002F : 0.8F;
      const waveform modulator = windowed(frame % 2 == 0 ? vowel(n, 900.0, level / 8) : noise(n, level, frame));
      const waveform carrier = windowed(noise(n, frame % 3 == 2 ? 0.001F : 0.5F, 100 + frame));
      const waveform expected = plain_vocode(mode, modulator, carrier, averages);
      ASSERT_EQ(vocode(mode, modulator, carrier, state.get()), expected) << "mode " << mode << ", frame " << frame;
      ASSERT_EQ(state->wavelet_level_avg, averages) << "mode " << mode << ", frame " << frame;
      heard += peak(expected);
    }
    EXPECT_GT(heard, 0.1F);
  }
}

}  // namespace
