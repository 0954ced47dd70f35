// MIT License.
#include "engine/filter_bank.h"

#include <gtest/gtest.h>

#include "engine/voco_state.h"
#include "tests/engine/engine_words.h"

namespace {

TEST(FilterBank, LeavesTheModulatorUnchangedWhenTheArenaIsExhausted) {
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

TEST(FilterBank, KeepsBandFrequenciesWithinTheSpectrum) {
  const bandpass_coefficients high = bandpass_of(30000.0F, 2.0F, 44100.0F);
  const bandpass_coefficients highest = bandpass_of(22040.0F, 2.0F, 44100.0F);
  EXPECT_EQ(high.a1, highest.a1);
  EXPECT_EQ(bandpass_of(-5.0F, 2.0F, 44100.0F).a1, bandpass_of(10.0F, 2.0F, 44100.0F).a1);
}

}  // namespace
