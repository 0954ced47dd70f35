// MIT License.
#include "engine/voices.h"

#include <gtest/gtest.h>

#include <cstring>

#include "dsp/oscillators.h"
#include "dsp/processor.h"
#include "engine/notes.h"
#include "tests/engine/engine_words.h"

namespace {

// --- One sample by plain arithmetic, voice after voice ---

template <size_t entries>
double plain_read(const float (&table)[entries], float phase) {
  if (!(phase > -1.0F && phase < static_cast<float>(entries - 1))) return 0.0;
  const auto i = static_cast<size_t>(phase);
  const double here = double{table[i]}, next = double{table[i + 1]};
  return here + (next - here) * (double{phase} - static_cast<double>(i));
}

bool plain_advance(double modulation, double ratio, float wrap, const wsyn_state& synth, float* phase) {
  const double product = double{synth.bend} * modulation * double{static_cast<float>(ratio)} * synth.base_step;
  double next = double{*phase} + double{std::fabs(static_cast<float>(product)) * (1.0F / synth.octave_divisor)};
  const bool wraps = next > double{wrap};
  if (wraps) next -= double{wrap};
  *phase = static_cast<float>(next);
  return wraps;
}

float plain_oscillators(int32_t note, const wsyn_state& synth, voice_record* voice) {
  const bool loops = synth.render == render_sampled;
  const bool sync = synth.render == render_sum_sync || synth.render == render_ring_sync;
  const bool ring = synth.render == render_ring || synth.render == render_ring_sync;
  const float wrap1 = loops ? static_cast<float>(synth.wrap1) : 1023.0F;
  const float wrap2 = loops ? static_cast<float>(synth.wrap2) : 1023.0F;
  const auto y1 = loops ? plain_read(*synth.voice_wave1, voice->phase1) : plain_read(synth.shape1, voice->phase1);
  const bool wraps = plain_advance(synth.pitch_mod1, synth.note_ratio1[note], wrap1, synth, &voice->phase1);
  if (sync && wraps) voice->phase2 = 0.0F;
  const auto y2 = loops ? plain_read(*synth.voice_wave2, voice->phase2) : plain_read(synth.shape2, voice->phase2);
  plain_advance(synth.pitch_mod2, synth.note_ratio2[note], wrap2, synth, &voice->phase2);
  const double y = ring ? y1 * y2 : y1 + y2;
  const float s = std::fabs(static_cast<float>(y)) - 0.5F;
  return static_cast<float>(y + double{(std::fabs(s) - 0.25F) * synth.shaper_drive * s});
}

float plain_next_sample(wsyn_state* synth) {
  float sum = 0.0F;
  for (int32_t note = 0; note < wsyn_voice_count; ++note) {
    voice_record& voice = synth->voices[note];
    if (voice.state == voice_idle) continue;
    const bool releasing = voice.state == voice_releasing;
    voice.level = (releasing ? voice.level * 500.0F : voice.level * 500.0F + 1.0F) * 0.001996008F;
    const float x = plain_oscillators(note, *synth, &voice);
    float* const y = voice.filter;
    const float k = synth->filter_feedback;
    const float g = synth->filter_scale;
    y[0] = (x - (y[4] - y[2] + y[1] - y[0]) * synth->filter_amount * 0.8205F + y[0] * k) * g;
    for (int32_t stage = 1; stage < 5; ++stage) y[stage] = (y[stage] * k + y[stage - 1]) * g;
    sum += y[4] * voice.level;
    if (releasing && voice.level < 0.001F) voice_set_condition(note, voice_idle, synth), voice = {};
  }
  wsyn_advance_filter(synth);
  return sum * 0.75F / std::sqrt(10.0F);
}

// --- The versions for different processors ---

using next_samples = decltype(&wsyn_next_samples);

class Voices : public testing::TestWithParam<next_samples> {
 protected:
  void SetUp() override {
    if (GetParam() == wsyn_next_samples_avx2 && !processor_has_avx2()) GTEST_SKIP() << "a processor without AVX2";
  }
};
INSTANTIATE_TEST_SUITE_P(Baseline, Voices, testing::Values(wsyn_next_samples_baseline));
INSTANTIATE_TEST_SUITE_P(Avx2, Voices, testing::Values(wsyn_next_samples_avx2));

// Some keys and controls of a player who never rests. Equal calls in turn play the same on another synthesizer.
void play_on(uint32_t turn, voco_state* voco) {
  wsyn_state& synth = voco->synth;
  notes_set_sustain(turn % 5 == 3, &synth, &voco->note_mirror);
  for (uint32_t i = 0; i < turn % 7; ++i) {
    notes_on(static_cast<int32_t>(30 + (turn * 37 + i * 11) % 75), &synth, &voco->note_mirror);
    notes_off(static_cast<int32_t>(30 + (turn * 23 + i * 7) % 75), &synth, &voco->note_mirror);
  }
  if (turn % 3 == 0) synth.cutoff_target = static_cast<float>(turn % 8) * 0.1F;
  synth.filter_gain = static_cast<float>(turn % 4) * 0.5F;
  synth.shaper_drive = static_cast<float>(turn % 6) * 0.4F;
  synth.pitch_mod1 = turn % 11 == 10 ? 600.0 : 0.7 + turn % 5;  // the former carries phases out of their tables
  synth.pitch_mod2 = turn % 13 == 12 ? 0.0 : turn % 4 - 1.9;
  synth.bend = turn % 2 == 0 ? 1.0F : 1.06F;
}

TEST_P(Voices, EqualPlainArithmeticBitForBitInRunsOfAnyLength) {
  sound_values sound = plain_sound(2.0F);
  sound[value_wave2] = 3.0F;
  for (const auto render : {render_sum, render_sum_sync, render_ring, render_ring_sync, render_sampled}) {
    const auto state = committed(sound);
    const auto plain = committed(sound);
    state->synth.render = plain->synth.render = render;
    int most_voices = 0;
    for (uint32_t turn = 1; turn <= 130; ++turn) {
      play_on(turn, state.get());
      play_on(turn, plain.get());
      const uint32_t lengths[] = {1, 2, 3, 64, 127, 128, 129, 500};
      std::vector<float> samples(lengths[turn % 8]), expected(samples.size());
      GetParam()(static_cast<int32_t>(samples.size()), &state->synth, samples.data());
      for (float& sample : expected) sample = plain_next_sample(&plain->synth);
      ASSERT_EQ(std::memcmp(samples.data(), expected.data(), samples.size() * sizeof(float)), 0) << turn;
      ASSERT_EQ(std::memcmp(state->synth.voices, plain->synth.voices, sizeof state->synth.voices), 0) << turn;
      const int voices = std::popcount(state->synth.sounding[0]) + std::popcount(state->synth.sounding[1]);
      most_voices = std::max(most_voices, voices);
    }
    EXPECT_GT(most_voices, 20);
    notes_set_sustain(0, &state->synth, &state->note_mirror);
    notes_all_off(&state->synth, &state->note_mirror);
    std::vector<float> tail(5000);
    GetParam()(static_cast<int32_t>(tail.size()), &state->synth, tail.data());
    EXPECT_NE(tail.front(), 0.0F);
    EXPECT_EQ(tail.back(), 0.0F);
    EXPECT_EQ(state->synth.sounding[0] | state->synth.sounding[1], 0U);
  }
}

}  // namespace
