// MIT License. Tests of the oscillators: commit rules, pitch, rendering and modulation.
#include "dsp/oscillators.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <tuple>
#include <vector>

#include "dsp/wave_store.h"

namespace {

using params = std::array<float, wsyn_param_count>;
using changes = std::initializer_list<std::pair<wsyn_param, float>>;

// Concert pitch, two saws, no modulation, but for the changes.
void commit(const changes& made, const std::unique_ptr<wsyn_state>& state) {
  params p{};
  p[wsyn_param_rate_ratio] = 1.0f;
  p[wsyn_param_reference_pitch] = 440.0f;
  p[wsyn_param_wave_select1] = p[wsyn_param_wave_select2] = 1.0f;
  p[wsyn_param_pitch_source1] = p[wsyn_param_pitch_source2] = -1.0f;
  p[wsyn_param_cutoff] = 0.5f;
  for (const auto& [index, value] : made) p[static_cast<size_t>(index)] = value;
  wsyn_commit(p.data(), state.get());
  wsyn_select_render(state.get());
}

// A synthesizer after one commit and the modulation of one frame, ready to render.
std::unique_ptr<wsyn_state> committed(const changes& made) {
  auto state = std::make_unique<wsyn_state>();
  commit(made, state);
  wsyn_modulate_pitch(0.0f, 0, state.get());
  return state;
}

// Steps of one sample at ratio 1, for tests that need round numbers.
void set_steps(double step1, double step2, const std::unique_ptr<wsyn_state>& state) {
  state->base_step = 1.0;
  state->pitch_mod1 = step1;
  state->pitch_mod2 = step2;
}

// --- Commit ---

TEST(Commit, RebuildsATableOnlyWhenItsNumberOrTheModeChanges) {
  const auto state = committed({{wsyn_param_wave_select1, 9.0f}});
  EXPECT_EQ(state->wrap1, 89037);  // loop 0, whose number a zeroed record holds
  EXPECT_EQ(state->shape2[512], wsyn_shape_value(1, 3.1415927f));
  const std::vector<float> noise(std::begin(state->shape1), std::end(state->shape1));
  const auto noise_stands = [&] { return std::ranges::equal(noise, state->shape1); };
  state->bend = 1.5f;
  const uint32_t seed = state->noise_loop_seed;

  commit({{wsyn_param_wave_select1, 9.9f}, {wsyn_param_wave_select2, 2.0f}}, state);
  EXPECT_TRUE(noise_stands()) << "the number of oscillator 1 is 9 as before";
  EXPECT_EQ(state->shape2[300], wsyn_shape_value(2, static_cast<float>(300 * 0.006135923151542565)));
  EXPECT_EQ(state->bend, 1.5f) << "only the first commit centres the bend";

  commit({{wsyn_param_sampled, 1.0f}, {wsyn_param_wave_select1, 9.9f}, {wsyn_param_wave_select2, 2.0f}}, state);
  EXPECT_TRUE(noise_stands()) << "loops don't touch the shapes";
  EXPECT_EQ(state->wrap1, 10000);
  EXPECT_EQ(state->wrap2, sample_loops[2].loop_length);
  EXPECT_EQ(state->noise_loop_seed, seed) << "noise is drawn once";

  commit({{wsyn_param_wave_select1, 9.9f}}, state);
  EXPECT_FALSE(noise_stands()) << "a change of mode refills";

  commit({{wsyn_param_sampled, 0.5f}, {wsyn_param_wave_select1, 3.0f}}, state);
  EXPECT_EQ(state->wrap1, sample_loops[3].loop_length);
  EXPECT_EQ(state->tune1, -0.0016666666666666668) << "a mode of one half loads loops but keeps the tuning";
}

// --- Pitch ---

TEST(Pitch, FollowsTheReferenceBetweenLimitsAndTheOctave) {
  const std::pair<float, double> steps[] = {
      {440.0f, 3.03747}, {432.0f, 2.98224}, {200.0f, 2.0}, {700.0f, 4.0}, {NAN, 2.0}};
  const auto state = committed({});
  for (const auto& [reference, step] : steps) {
    commit({{wsyn_param_reference_pitch, reference}}, state);
    EXPECT_NEAR(state->base_step, step, 1e-5) << reference << " Hz";
  }
  const std::pair<float, float> octaves[] = {{-2.0f, 4.0f}, {-1.9f, 2.0f}, {0.0f, 1.0f}, {1.0f, 0.5f},
                                             {2.9f, 0.25f}, {3.0f, 1.0f},  {NAN, 1.0f}};
  for (const auto& [octave, divisor] : octaves) {
    commit({{wsyn_param_octave, octave}}, state);
    EXPECT_EQ(state->octave_divisor, divisor) << octave;
  }
}

// --- Rendering ---

TEST(SelectRender, ChoosesByModeThenSyncAndRingAndKeepsTheChoiceForAFieldOfOneHalf) {
  // Mode, sync, ring and the choice; null leaves what there is, or takes the sum.
  const std::tuple<float, float, float, wsyn_render_fn> cases[] = {
      {0.0f, 0.0f, 0.0f, render_sum},       {0.0f, 0.0f, 1.0f, render_ring},    {0.0f, 1.0f, 0.0f, render_sum_sync},
      {0.0f, 1.0f, 1.0f, render_ring_sync}, {1.0f, 0.5f, 0.5f, render_sampled}, {0.5f, 0.0f, 0.0f, nullptr},
      {0.0f, 0.5f, 0.0f, nullptr},          {0.0f, 1.0f, 0.5f, nullptr},        {NAN, 0.0f, 0.0f, nullptr},
  };
  for (const auto& [mode, sync, ring, expected] : cases) {
    const auto state = std::make_unique<wsyn_state>();
    state->mode = mode, state->sync = sync, state->ring = ring;
    wsyn_select_render(state.get());
    EXPECT_EQ(state->render, expected ? expected : render_sum) << mode << sync << ring;
    state->render = render_sampled;
    wsyn_select_render(state.get());
    EXPECT_EQ(state->render, expected ? expected : render_sampled) << mode << sync << ring;
  }
}

TEST(Render, InterpolatesAndWrapsOneStepShortOfTheCycle) {
  const auto state = committed({{wsyn_param_wave_select2, 10.0f}});
  set_steps(0.75, 0.0, state);
  voice_record voice;
  voice.phase1 = 1022.5f;
  const float halfway = (state->shape1[1022] + state->shape1[1023]) * 0.5f;
  EXPECT_NEAR(render_sum(1.0f, 1.0f, &voice, state.get()), halfway, 1e-6);
  EXPECT_EQ(voice.phase1, 0.25f);

  voice.phase1 = 1022.25f;  // lands on 1023, which stays
  render_sum(1.0f, 1.0f, &voice, state.get());
  EXPECT_EQ(voice.phase1, 1023.0f);
  EXPECT_EQ(render_sum(1.0f, 1.0f, &voice, state.get()), state->shape1[1023]);
  EXPECT_EQ(voice.phase1, 0.75f);

  set_steps(-3000.0, 0.0, state);  // forward, and one subtraction, whatever the step
  render_sum(1.0f, 1.0f, &voice, state.get());
  EXPECT_EQ(voice.phase1, 1977.75f);
}

TEST(Render, SyncRestartsOscillatorTwoBeforeItIsRead) {
  const auto state = committed({});
  set_steps(2.0, -7.0, state);
  for (const auto render : {render_sum, render_sum_sync, render_ring, render_ring_sync}) {
    const bool sync = render == render_sum_sync || render == render_ring_sync;
    const bool ring = render == render_ring || render == render_ring_sync;
    for (const size_t phase1 : {100U, 1022U}) {  // the latter is read there, then goes over the end
      voice_record voice;
      voice.phase1 = static_cast<float>(phase1), voice.phase2 = 200.0f;
      const bool restarts = sync && phase1 == 1022;
      const double y1 = state->shape1[phase1], y2 = state->shape2[restarts ? 0 : 200];
      EXPECT_EQ(render(1.0f, 1.0f, &voice, state.get()), static_cast<float>(ring ? y1 * y2 : y1 + y2));
      EXPECT_EQ(voice.phase1, phase1 == 1022 ? 1.0f : 102.0f);
      EXPECT_EQ(voice.phase2, restarts ? 7.0f : 207.0f);
    }
  }
}

TEST(Render, LoopsWrapAtTheirOwnLengthsAndNeverSync) {
  const auto state = committed({{wsyn_param_sampled, 1.0f}, {wsyn_param_sync, 1.0f}, {wsyn_param_wave_select2, 4.0f}});
  set_steps(3.0, 5.0, state);
  voice_record voice;
  voice.phase1 = 29288.0f, voice.phase2 = 62050.0f;
  const double y1 = (*state->voice_wave1)[29288], y2 = (*state->voice_wave2)[62050];
  EXPECT_EQ(state->render(1.0f, 1.0f, &voice, state.get()), static_cast<float>(y1 + y2));
  EXPECT_EQ(voice.phase1, 1.0f);
  EXPECT_EQ(voice.phase2, 3.0f);
}

TEST(Render, TheShaperLeavesQuartersUnchanged) {
  const auto state = committed({{wsyn_param_wave_select2, 10.0f}, {wsyn_param_drive, 0.5f}});
  const auto shaped = [&](float y) {
    state->shape1[0] = y;
    voice_record voice;
    return render_sum(1.0f, 1.0f, &voice, state.get());
  };
  for (const float y : {0.25f, 0.5f, 0.75f, -0.25f, -0.5f, -0.75f}) EXPECT_EQ(shaped(y), y);
  EXPECT_FLOAT_EQ(shaped(1.0f), 1.0f + 0.25f * 2.0f * 0.5f);
  EXPECT_FLOAT_EQ(shaped(0.0f), 0.25f * 2.0f * -0.5f);
}

TEST(Render, PhasesOutsideTheTableReadZero) {
  const auto state = committed({});
  set_steps(0.0, 0.0, state);
  for (const auto render : {render_sum, render_sum_sync, render_ring, render_ring_sync, render_sampled}) {
    for (const float phase : {1e5f, 3e9f, -1.0f, -3e9f, INFINITY, -INFINITY, NAN}) {
      voice_record voice;
      voice.phase1 = voice.phase2 = phase;
      const float sample = render(1.0f, 1.0f, &voice, state.get());
      // A wrap on the way to oscillator 2 may have brought it back to the start of its table.
      EXPECT_TRUE(voice.phase2 == 0.0f ? std::isfinite(sample) : sample == 0.0f) << phase;
    }
  }
}

// --- Modulation ---

TEST(ModulatePitch, TheLfoReadsItsPhaseThenMovesOn) {
  const auto state =
      committed({{wsyn_param_pitch_source1, 0.0f}, {wsyn_param_pitch_depth1, 0.5f}, {wsyn_param_lfo_rate1, 2.0f}});
  const std::pair<float, double> read[] = {{256.75f, 1.5}, {768.75f, 0.5}, {512.0f, 1.0},  {1024.0f, 1.0},
                                           {-1.0f, 1.0},   {NAN, 1.0},     {INFINITY, 1.0}};
  for (const auto& [phase, modulation] : read) {
    state->lfo_phase1 = phase;
    wsyn_modulate_pitch(0.0f, 0, state.get());
    EXPECT_EQ(state->pitch_mod1, modulation) << phase;
    EXPECT_TRUE(state->lfo_phase1 == (phase < 512.0f ? phase + 512.0f : phase - 512.0f) || !std::isfinite(phase));
  }
}

// --- Filter smoothing ---

TEST(AdvanceFilter, CoversTwoThirdsInItsTimeConstantAndDerivesTheSameWhetherItHasSettledOrNot) {
  const auto state = committed({{wsyn_param_cutoff, 1.0f}, {wsyn_param_resonance, 0.5f}});
  for (int i = 1; i <= 120000; ++i) {
    wsyn_advance_filter(state.get());
    const float c = state->cutoff_now;
    ASSERT_NEAR(c, 0.8 * (1 - std::exp(-i / 3000.0)), 1e-3);
    const float feedback = static_cast<float>(std::pow(static_cast<double>(1.0f - c), 6.0)) * 100.0f;
    ASSERT_EQ(state->filter_feedback, feedback);
    ASSERT_EQ(state->filter_scale, 1.0f / (feedback + 1.0f));
    ASSERT_EQ(state->filter_amount, (c + 1.0f) * 0.5f * state->filter_gain);
  }
  EXPECT_NEAR(state->cutoff_now, 0.8f, 2e-4);
  EXPECT_NEAR(state->filter_gain, 0.75 * 2.208, 1e-6);
  // A commit with another resonance reaches a filter at rest.
  commit({{wsyn_param_cutoff, 1.0f}, {wsyn_param_resonance, 1.0f}}, state);
  EXPECT_EQ(state->filter_amount, (state->cutoff_now + 1.0f) * 0.5f * state->filter_gain);
  EXPECT_NEAR(state->filter_gain, 2.208, 1e-6);
}

}  // namespace
