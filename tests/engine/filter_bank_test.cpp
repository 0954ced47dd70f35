// MIT License.
#include "engine/filter_bank.h"

#include <gtest/gtest.h>

#include "engine/voco_state.h"
#include "tests/engine/engine_words.h"

namespace {

std::unique_ptr<voco_state> state_with(int32_t sibilance, int32_t freeze) {
  auto state = std::make_unique<voco_state>();
  state->band_filters = filter_bank_coefficients_of(44100.0F);
  state->sibilance_on = sibilance;
  state->freeze_on = freeze;
  state->env_mix = 0.3F;
  state->env_attack = 0.1F;
  state->env_release = 0.2F;
  state->env_average = 0.4F;
  return state;
}

void run_from_rest(const bandpass_coefficients& c, bool backward, waveform* samples) {
  if (backward) std::reverse(samples->begin(), samples->end());
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
  if (backward) std::reverse(samples->begin(), samples->end());
}

float mean_level(const waveform& x) {
  float sum = 0;
  for (const float sample : x) sum += std::fabs(sample);
  return sum / static_cast<float>(x.size());
}

// The judge: the bands one after the other.
waveform vocode_plainly(band_filter filter, const waveform& modulator, const waveform& carrier, voco_state* s) {
  const bool twice = filter == band_filter::bandpass_twice;
  const float carrier_gain = twice ? 0.375F : 1.125F;
  const float sibilance_gain = twice ? 0.6F : 2.025F;
  waveform out = silence(modulator.size());
  for (size_t i = 0; i < filter_bank_bands; ++i) {
    const bandpass_coefficients& c = twice ? s->band_filters.twice[i] : s->band_filters.forward_backward[i];
    waveform m = modulator;
    waveform k = carrier;
    for (waveform* const band : {&m, &k}) {
      run_from_rest(c, false, band);
      run_from_rest(c, !twice, band);
    }
    if (s->freeze_on == 0) s->target_env[i] = mean_level(m);
    const float level = s->target_env[i];
    float& fast = s->fast_env[i];
    float& slow = s->slow_env[i];
    const float a = s->env_attack * 32.0F;
    const float r = s->env_release * 40.0F;
    const float w = s->env_average * 8.0F;
    fast = level <= fast ? (r * fast + level) / (r + 1.0F) : (a * fast + level) / (a + 1.0F);
    slow = (w * slow + level) / (w + 1.0F);
    const float g = s->env_attack * 2.0F + 1.0F;
    const float v = g * fast * 0.5F * s->env_mix + slow * (1.0F - s->env_mix);
    const float flatten = 1.0F / std::max(mean_level(k), 0.001F);
    for (size_t t = 0; t < out.size(); ++t) {
      out[t] += k[t] * flatten * v * carrier_gain;
      if (s->sibilance_on == 1 && i >= 16) out[t] += m[t] * sibilance_gain;
    }
  }
  return out;
}

TEST(FilterBank, EqualsBandAfterBandBitForBit) {
  for (const band_filter filter : {band_filter::bandpass_forward_backward, band_filter::bandpass_twice}) {
    for (const int32_t sibilance : {0, 1, 2}) {
      const auto fast = state_with(sibilance, 0);
      const auto plain = state_with(sibilance, 0);
      for (uint32_t frame = 1; frame <= 5; ++frame) {
        if (frame == 4) fast->freeze_on = plain->freeze_on = 1;
        const waveform carrier = frame == 3 ? silence(frame_size) : noise(frame_size, 0.5F, frame + 100);
        waveform result = noise(frame_size, 1.0F / static_cast<float>(frame), frame);
        const waveform expected = vocode_plainly(filter, result, carrier, plain.get());
        vocoder_filter_bank(filter, result.data(), carrier.data(), frame_size, fast.get());
        ASSERT_EQ(result, expected) << "sibilance " << sibilance << ", frame " << frame;
      }
    }
  }
}

TEST(FilterBank, LeavesTheModulatorAsItCameWhenTheArenaIsExhausted) {
  const auto state = state_with(0, 0);
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
    run_from_rest(bank.twice[bands[i]], false, &x);
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
