// MIT License.
#include "engine/filter_bank.h"

#include <gtest/gtest.h>

#include "engine/envelope_followers.h"
#include "tests/engine/plain_engine.h"

namespace {

using bank_fn = void (*)(band_filter, float*, const float*, int32_t, voco_state*);

// The bank band by band and sample by sample, on frames of any length.
waveform plain_bank(band_filter filter, const waveform& modulator, const waveform& carrier, voco_state* state) {
  const bool twice = filter == band_filter::bandpass_twice;
  const follower_settings settings =
      follower_settings_of(state->env_attack, state->env_release, state->env_average, state->env_mix);
  waveform sum(modulator.size());
  for (size_t band = 0; band < 25; ++band) {
    waveform m = modulator, c = carrier;
    const plain::band_pass section(plain::band_hz[band], plain::band_q(twice ? 7 : 6, static_cast<int>(band)));
    float levels[2] = {};
    for (waveform* const x : {&m, &c}) {
      section.run(x->begin(), x->end());
      twice ? section.run(x->begin(), x->end()) : section.run(x->rbegin(), x->rend());
      float& level = levels[x == &c];
      for (const float sample : *x) level += std::fabs(sample);
      level /= static_cast<float>(x->size());
    }
    if (state->freeze_on == 0) state->target_env[band] = levels[0];
    followers_advance(state->target_env[band], settings, &state->fast_env[band], &state->slow_env[band]);
    const float envelope = followers_value(settings, state->fast_env[band], state->slow_env[band]);
    const float flatten = 1.0F / std::max(levels[1], 0.001F);
    for (size_t i = 0; i < sum.size(); ++i) {
      sum[i] += c[i] * flatten * envelope * (twice ? 0.375F : 1.125F);
      if (state->sibilance_on == 1 && band >= 16) sum[i] += m[i] * (twice ? 0.6F : 2.025F);
    }
  }
  return sum;
}

std::unique_ptr<voco_state> bank_state(int32_t sibilance_on, int32_t freeze_on) {
  auto state = std::make_unique<voco_state>();
  state->band_filters = filter_bank_coefficients_of(44100.0F);
  state->env_attack = 0.3F;
  state->env_release = 0.6F;
  state->env_average = 0.2F;
  state->env_mix = 0.7F;
  state->sibilance_on = sibilance_on;
  state->freeze_on = freeze_on;
  state->target_env.fill(0.05F);  // held from an earlier frame
  return state;
}

void expect_plain_loops(bank_fn bank) {
  for (const auto filter : {band_filter::bandpass_forward_backward, band_filter::bandpass_twice}) {
    for (const int32_t switches : {0, 1, 2, 3}) {
      const auto state = bank_state(switches & 1, switches >> 1);
      const auto judge = bank_state(switches & 1, switches >> 1);
      for (const size_t n : {1024U, 1021U, 9U, 1U}) {
        const waveform modulator = noise(n, 0.7F, 3);
        const waveform carrier = noise(n, n == 9U ? 0.0F : 0.4F, 4);
        const waveform expected = plain_bank(filter, modulator, carrier, judge.get());
        waveform result = modulator;
        bank(filter, result.data(), carrier.data(), static_cast<int32_t>(n), state.get());
        ASSERT_EQ(result, expected) << "filter " << static_cast<int>(filter) << ", switches " << switches << ", " << n;
        ASSERT_EQ(state->fast_env, judge->fast_env);
        ASSERT_EQ(state->slow_env, judge->slow_env);
        ASSERT_EQ(state->target_env, judge->target_env);
        ASSERT_EQ(state->arena.used, 0);
      }
    }
  }
}

TEST(FilterBank, EqualsPlainLoopsInVectorsOf128Bits) {
  expect_plain_loops(vocoder_filter_bank_narrow);
}

TEST(FilterBank, EqualsPlainLoopsInVectorsOf256Bits) {
  if (!processor_has_avx2()) GTEST_SKIP() << "this processor has no such vectors";
  expect_plain_loops(vocoder_filter_bank_wide);
}

}  // namespace
