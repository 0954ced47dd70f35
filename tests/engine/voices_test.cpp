// MIT License.
#include "engine/voices.h"

#include <gtest/gtest.h>

#include <cstring>

#include "dsp/oscillators.h"
#include "engine/notes.h"
#include "tests/engine/engine_words.h"

namespace {

// One sample by plain loops, voice after voice.
float plain_next_sample(wsyn_state* synth) {
  float sum = 0.0F;
  for (int32_t note = 0; note < wsyn_voice_count; ++note) {
    voice_record& voice = synth->voices[note];
    if (voice.state == voice_idle) continue;
    const bool releasing = voice.state == voice_releasing;
    voice.level = (releasing ? voice.level * 500.0F : voice.level * 500.0F + 1.0F) * 0.001996008F;
    const float x = synth->render(static_cast<float>(synth->note_ratio1[note]),
                                  static_cast<float>(synth->note_ratio2[note]), &voice, synth);
    float* const y = voice.filter;
    const float k = synth->filter_feedback;
    const float g = synth->filter_scale;
    y[0] = (x - (y[4] - y[2] + y[1] - y[0]) * synth->filter_amount * 0.8205F + y[0] * k) * g;
    for (int32_t stage = 1; stage < 5; ++stage) y[stage] = (y[stage] * k + y[stage - 1]) * g;
    sum += y[4] * voice.level;
    if (releasing && voice.level < 0.001F) voice = {};
  }
  wsyn_advance_filter(synth);
  return sum * 0.75F / std::sqrt(10.0F);
}

TEST(Voices, EqualPlainLoopsBitForBitInRunsOfAnyLength) {
  const auto state = committed(plain_sound(2.0F));
  const auto plain = committed(plain_sound(2.0F));
  for (const int32_t run : {1, 63, 64, 65, 512, 4000}) {
    // From one to nine voices, some of them released: they end within the longest run.
    for (voco_state* const voco : {state.get(), plain.get()}) {
      notes_on(40 + run % 50, &voco->synth, &voco->note_mirror);
      notes_on(100 - run % 60, &voco->synth, &voco->note_mirror);
      notes_off(40 + run % 7, &voco->synth, &voco->note_mirror);
      voco->synth.cutoff_target = 1.0F / static_cast<float>(run);
      voco->synth.filter_gain = 1.5F;
    }
    std::vector<float> samples(static_cast<size_t>(run));
    wsyn_next_samples(run, &state->synth, samples.data());
    for (const float sample : samples) ASSERT_EQ(sample, plain_next_sample(&plain->synth)) << run;
    ASSERT_EQ(std::memcmp(state->synth.voices, plain->synth.voices, sizeof state->synth.voices), 0) << run;
    ASSERT_NE(samples.back(), 0.0F);
  }
  EXPECT_EQ(state->synth.voices[41].state, voice_idle);
}

}  // namespace
