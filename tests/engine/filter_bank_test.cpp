// MIT License.
#include "engine/filter_bank.h"

#include <gtest/gtest.h>

#include "engine/voco_state.h"
#include "tests/engine/engine_words.h"

namespace {

void run_from_rest(const bandpass_coefficients& c, waveform* samples) {
  float x1 = 0;
  float x2 = 0;
  float y1 = 0;
  float y2 = 0;
  for (float& x : *samples) {
    const float y = c.b0 * x + 0.0F * x1 + c.b2 * x2 - c.a1 * y1 - c.a2 * y2;
    x2 = x1;
    x1 = x;
    y2 = y1;
    y1 = y;
    x = y;
  }
}

TEST(FilterBank, LeavesTheModulatorAsItCameWhenTheArenaIsExhausted) {
  const auto state = std::make_unique<voco_state>();
  const waveform modulator = noise(frame_size, 1.0F);
  for (const int32_t capacity : {0, 1024, 16 * 1024}) {
    state->arena.capacity = capacity;
    waveform result = modulator;
    vocoder_filter_bank(band_filter::bandpass_twice, result.data(), modulator.data(), frame_size, state.get());
    EXPECT_EQ(result, modulator) << capacity;
    EXPECT_EQ(state->arena.used, 0);
  }
}

TEST(FilterBank, BandsPassTheirCentreAtUnity) {
  const filter_bank_coefficients bank = filter_bank_coefficients_of(44100.0F);
  const double centres[] = {100, 300, 1036.8, 5349.6602, 15974, 21000};
  const size_t bands[] = {0, 2, 8, 17, 23, 24};
  for (size_t i = 0; i < std::size(bands); ++i) {
    waveform x = sine(44100, centres[i], 1.0);
    run_from_rest(bank.twice[bands[i]], &x);
    EXPECT_NEAR(level_at(x, 22050, 22050, centres[i]), 1.0, 0.01) << centres[i];
  }
}

TEST(FilterBank, KeepsBandFrequenciesWithinTheSpectrum) {
  const bandpass_coefficients high = bandpass_of(30000.0F, 2.0F, 44100.0F);
  const bandpass_coefficients highest = bandpass_of(22040.0F, 2.0F, 44100.0F);
  EXPECT_EQ(high.a1, highest.a1);
  EXPECT_EQ(bandpass_of(-5.0F, 2.0F, 44100.0F).a1, bandpass_of(10.0F, 2.0F, 44100.0F).a1);
}

}  // namespace
