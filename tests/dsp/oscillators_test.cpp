// MIT License. Tests of the oscillators: commit rules, pitch, rendering and modulation.
#include "dsp/oscillators.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <numbers>
#include <vector>

#include "dsp/wave_store.h"

namespace {

using params = std::array<float, wsyn_param_count>;

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

// Concert pitch, two saws, no modulation.
params plain_params() {
  params p{};
  p[wsyn_param_rate_ratio] = 1.0f;
  p[wsyn_param_reference_pitch] = 440.0f;
  p[wsyn_param_wave_select1] = 1.0f;
  p[wsyn_param_wave_select2] = 1.0f;
  p[wsyn_param_pitch_source1] = -1.0f;
  p[wsyn_param_pitch_source2] = -1.0f;
  p[wsyn_param_cutoff] = 0.5f;
  return p;
}

params with(params p, std::initializer_list<std::pair<wsyn_param, float>> changes) {
  for (const auto& [index, value] : changes) p[static_cast<size_t>(index)] = value;
  return p;
}

// A synthesizer after one commit and the modulation of one frame, ready to render.
std::unique_ptr<wsyn_state> committed(const params& p) {
  auto state = std::make_unique<wsyn_state>();
  wsyn_commit(p.data(), state.get());
  wsyn_select_render(state.get());
  wsyn_modulate_pitch(0.0f, 0, state.get());
  return state;
}

std::unique_ptr<wsyn_state> committed(std::initializer_list<std::pair<wsyn_param, float>> changes) {
  return committed(with(plain_params(), changes));
}

void commit(const params& p, const std::unique_ptr<wsyn_state>& state) {
  wsyn_commit(p.data(), state.get());
}

float next_sample(const std::unique_ptr<wsyn_state>& state, voice_record* voice, int32_t note = 60) {
  return state->render(static_cast<float>(state->note_ratio1[note]), static_cast<float>(state->note_ratio2[note]),
                       voice, state.get());
}

// Steps of one sample at given ratios, for tests that need round numbers.
void set_steps(double step1, double step2, const std::unique_ptr<wsyn_state>& state) {
  state->base_step = 1.0;
  state->pitch_mod1 = step1;
  state->pitch_mod2 = step2;
}

float plain_sum(float y1, float y2) {
  return static_cast<float>(static_cast<double>(y1) + static_cast<double>(y2));
}

// --- Commit ---

TEST(Commit, TheFirstOneBuildsEverything) {
  const auto state = committed({});
  EXPECT_EQ(state->magic, 0x7773796eu);
  EXPECT_EQ(state->initialised, 1);
  EXPECT_EQ(state->committing, 0);
  EXPECT_EQ(state->bend, 1.0f);
  EXPECT_EQ(state->output_level, 1.0f);
  EXPECT_EQ(state->loop_length[6], 60000.0f);
  EXPECT_NE(state->sine_table[256], 0.0f);
  EXPECT_EQ(state->wrap1, 89037);  // loop 0, whose number a zeroed record holds
  EXPECT_EQ(state->wave1, 1);
  EXPECT_EQ(state->shape1[512], wsyn_shape_value(1, std::numbers::pi_v<float>));
}

TEST(Commit, RebuildsATableOnlyWhenItsNumberOrTheModeChanges) {
  const auto state = committed({{wsyn_param_wave_select1, 9.0f}});
  std::vector<float> noise(std::begin(state->shape1), std::end(state->shape1));
  const auto noise_stands = [&] { return std::ranges::equal(noise, state->shape1); };
  state->bend = 1.5f;
  state->loop_table3[7] = 9.0f;

  params p = with(plain_params(), {{wsyn_param_wave_select1, 9.9f}, {wsyn_param_wave_select2, 2.0f}});
  commit(p, state);
  EXPECT_TRUE(noise_stands()) << "the number of oscillator 1 is 9 as before";
  EXPECT_EQ(state->wave2, 2);
  EXPECT_NE(state->shape2[300], state->shape1[300]);
  EXPECT_EQ(state->bend, 1.5f) << "only the first commit centres the bend";

  commit(with(p, {{wsyn_param_sampled, 1.0f}}), state);
  EXPECT_TRUE(noise_stands()) << "loops don't touch the shapes";
  EXPECT_EQ(state->wrap1, 10000);
  EXPECT_EQ(state->wrap2, sample_loops[2].loop_length);
  EXPECT_EQ(state->loop_table3[7], 9.0f) << "loops are built once";

  commit(p, state);
  EXPECT_FALSE(noise_stands()) << "a change of mode refills";
}

TEST(Commit, AModeOfOneHalfLoadsLoopsButKeepsTuningAndRender) {
  const auto state = committed({{wsyn_param_ring, 1.0f}});
  ASSERT_EQ(state->render, &render_ring);
  commit(with(plain_params(), {{wsyn_param_sampled, 0.5f}, {wsyn_param_wave_select1, 3.0f}}), state);
  wsyn_select_render(state.get());
  EXPECT_EQ(state->wave1, 3);
  EXPECT_EQ(state->wrap1, sample_loops[3].loop_length);
  EXPECT_EQ(state->tune1, -0.0016666666666666668);
  EXPECT_EQ(state->render, &render_ring);
}

TEST(Commit, TakesParametersThatAreNoNumbers) {
  params p{};
  for (const float value : {nan, infinity, -infinity, 3e38f}) {
    p.fill(value);
    const auto state = committed(p);
    state->render = render_sum;
    voice_record voice;
    for (int i = 0; i < 10; ++i) next_sample(state, &voice);
    wsyn_modulate_pitch(value, std::numeric_limits<int32_t>::min(), state.get());
    wsyn_advance_filter(state.get());
    EXPECT_GE(state->base_step, 2.0);
    EXPECT_LE(state->base_step, 4.0);
    EXPECT_EQ(state->octave_divisor, 1.0f);
  }
}

// --- Pitch ---

TEST(Pitch, TheBasicStepFollowsTheReferenceBetweenItsLimits) {
  const std::pair<float, double> cases[] = {
      {440.0f, 3.03747}, {432.0f, 2.98224}, {0.0f, 2.0}, {200.0f, 2.0}, {700.0f, 4.0}};
  for (const auto& [reference, step] : cases) {
    EXPECT_NEAR(committed({{wsyn_param_reference_pitch, reference}})->base_step, step, 1e-5) << reference << " Hz";
  }
  EXPECT_NEAR(committed({{wsyn_param_rate_ratio, 0.9f}})->base_step, 0.9 * 3.03747, 1e-5);
}

TEST(Pitch, OctavesFromMinusTwoToTwoDivideTheStep) {
  const std::pair<float, float> cases[] = {{-2.0f, 4.0f}, {-1.9f, 2.0f}, {0.0f, 1.0f},  {1.0f, 0.5f},
                                           {2.9f, 0.25f}, {3.0f, 1.0f},  {-3.0f, 1.0f}, {nan, 1.0f}};
  for (const auto& [octave, divisor] : cases) {
    EXPECT_EQ(committed({{wsyn_param_octave, octave}})->octave_divisor, divisor) << octave;
  }
}

TEST(Pitch, SemitonesAndCentsAddUpInOctaves) {
  const auto state = committed({{wsyn_param_coarse1, 7.0f}, {wsyn_param_fine1, -30.0f}});
  EXPECT_NEAR(state->tune1, 7.0 / 12 - 30.0 / 1200 - 2.0 / 1200, 1e-7);
  EXPECT_NEAR(state->note_ratio1[72], 2 * std::exp2(state->tune1), 1e-12);
  EXPECT_NEAR(state->note_ratio2[0], std::exp2(-5.0 - 2.0 / 1200), 1e-12);
}

TEST(Pitch, ShapesSoundAnOctaveBelowTheKeyboard) {
  const auto state = committed({});
  voice_record voice;
  next_sample(state, &voice);
  EXPECT_NEAR(voice.phase1, 3.034, 5e-4);
  EXPECT_NEAR(44100.0 / 1023.0 * static_cast<double>(voice.phase1), 130.8, 0.05);
}

TEST(Pitch, StepsGoForwardUnderANegativeModulation) {
  const auto state = committed({});
  set_steps(-3.0, -5.0, state);
  voice_record voice;
  state->render(1.0f, 1.0f, &voice, state.get());
  EXPECT_EQ(voice.phase1, 3.0f);
  EXPECT_EQ(voice.phase2, 5.0f);
}

// --- Rendering ---

TEST(SelectRender, TakesModeThenSyncAndRing) {
  const struct {
    float mode, sync, ring;
    wsyn_render_fn expected;
  } cases[] = {
      {0.0f, 0.0f, 0.0f, render_sum},       {0.0f, 0.0f, 1.0f, render_ring},    {0.0f, 1.0f, 0.0f, render_sum_sync},
      {0.0f, 1.0f, 1.0f, render_ring_sync}, {1.0f, 1.0f, 1.0f, render_sampled}, {1.0f, 0.5f, 0.5f, render_sampled},
  };
  const auto state = std::make_unique<wsyn_state>();
  for (const auto& [mode, sync, ring, expected] : cases) {
    state->mode = mode, state->sync = sync, state->ring = ring;
    wsyn_select_render(state.get());
    EXPECT_EQ(state->render, expected) << mode << sync << ring;
  }
  for (const auto& [mode, sync, ring] :
       {std::array{0.5f, 0.0f, 0.0f}, {0.0f, 0.5f, 0.0f}, {0.0f, 1.0f, 0.5f}, {nan, 0, 0}}) {
    state->mode = mode, state->sync = sync, state->ring = ring;
    wsyn_select_render(state.get());
    EXPECT_EQ(state->render, &render_sampled) << "a field in the middle changes nothing";
    state->render = nullptr;
    wsyn_select_render(state.get());
    EXPECT_EQ(state->render, &render_sum) << "but there is always a function";
    state->render = render_sampled;
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

  set_steps(3000.0, 0.0, state);  // one subtraction, whatever the step
  render_sum(1.0f, 1.0f, &voice, state.get());
  EXPECT_EQ(voice.phase1, 1977.75f);
}

TEST(Render, SyncRestartsOscillatorTwoBeforeItIsRead) {
  const auto state = committed({{wsyn_param_wave_select2, 2.0f}});
  set_steps(2.0, 7.0, state);
  voice_record voice;
  voice.phase1 = 100.0f, voice.phase2 = 300.0f;
  EXPECT_EQ(render_sum_sync(1.0f, 1.0f, &voice, state.get()), plain_sum(state->shape1[100], state->shape2[300]));
  EXPECT_EQ(voice.phase2, 307.0f);

  voice.phase1 = 1022.0f;  // read there, then over the end
  EXPECT_EQ(render_sum_sync(1.0f, 1.0f, &voice, state.get()), plain_sum(state->shape1[1022], state->shape2[0]));
  EXPECT_EQ(voice.phase1, 1.0f);
  EXPECT_EQ(voice.phase2, 7.0f);

  voice.phase1 = 1022.0f, voice.phase2 = 300.0f;
  const float free = render_sum(1.0f, 1.0f, &voice, state.get());
  EXPECT_EQ(free, plain_sum(state->shape1[1022], state->shape2[300]));
  EXPECT_EQ(voice.phase2, 307.0f);
}

TEST(Render, RingMultipliesAndFollowsItsSync) {
  const auto state = committed({{wsyn_param_wave_select2, 8.0f}});
  set_steps(2.0, 7.0, state);
  for (const bool sync : {false, true}) {
    voice_record voice;
    voice.phase1 = 1022.0f, voice.phase2 = 200.0f;
    const auto render = sync ? render_ring_sync : render_ring;
    EXPECT_FLOAT_EQ(render(1.0f, 1.0f, &voice, state.get()), state->shape1[1022] * state->shape2[sync ? 0 : 200]);
    EXPECT_EQ(voice.phase2, sync ? 7.0f : 207.0f);
  }
}

TEST(Render, LoopsWrapAtTheirOwnLengthsAndNeverSync) {
  const auto state = committed({{wsyn_param_sampled, 1.0f}, {wsyn_param_sync, 1.0f}, {wsyn_param_wave_select2, 4.0f}});
  ASSERT_EQ(state->render, &render_sampled);
  set_steps(3.0, 5.0, state);
  voice_record voice;
  voice.phase1 = 29288.0f, voice.phase2 = 62050.0f;
  EXPECT_EQ(state->render(1.0f, 1.0f, &voice, state.get()),
            plain_sum(state->loop_table1[29288], state->loop_table4[62050]));
  EXPECT_EQ(voice.phase1, 1.0f);
  EXPECT_EQ(voice.phase2, 3.0f);
}

TEST(Render, TheShaperLeavesQuartersAlone) {
  const auto state = committed({{wsyn_param_wave_select2, 10.0f}, {wsyn_param_drive, 0.5f}});
  set_steps(0.0, 0.0, state);
  const auto shaped = [&](float y) {
    state->shape1[0] = y;
    voice_record voice;
    return render_sum(1.0f, 1.0f, &voice, state.get());
  };
  for (const float y : {0.25f, 0.5f, 0.75f, -0.25f, -0.5f, -0.75f}) EXPECT_EQ(shaped(y), y);
  EXPECT_FLOAT_EQ(shaped(1.0f), 1.0f + 0.25f * 2.0f * 0.5f);
  EXPECT_FLOAT_EQ(shaped(0.0f), 0.25f * 2.0f * -0.5f);
  state->shaper_drive = 0.0f;
  EXPECT_EQ(shaped(1.0f), 1.0f);
}

TEST(Render, PhasesOutsideTheTableReadZero) {
  const auto state = committed({});
  state->shaper_drive = 0.0f;
  for (const auto render : {render_sum, render_sum_sync, render_ring, render_ring_sync, render_sampled}) {
    for (const float phase : {1e5f, 3e9f, -1.0f, -3e9f, infinity, -infinity, nan}) {
      set_steps(0.0, 0.0, state);
      voice_record voice;
      voice.phase1 = voice.phase2 = phase;
      const float sample = render(1.0f, 1.0f, &voice, state.get());
      // A wrap on the way to oscillator 2 may have brought it back to the start of its table.
      if (voice.phase2 != 0.0f) {
        EXPECT_EQ(sample, 0.0f) << phase;
      }
      EXPECT_TRUE(std::isfinite(sample)) << phase;
    }
  }
}

TEST(Render, OscillatorsStandBeforeTheFirstFrame) {
  const auto state = std::make_unique<wsyn_state>();
  wsyn_commit(plain_params().data(), state.get());
  wsyn_select_render(state.get());
  voice_record voice;
  next_sample(state, &voice);
  EXPECT_EQ(voice.phase1, 0.0f);
}

// --- Modulation ---

TEST(ModulatePitch, TheLfoReadsItsPhaseThenMovesOn) {
  const auto state = committed({});
  commit(with(plain_params(),
              {{wsyn_param_pitch_source1, 0.0f}, {wsyn_param_pitch_depth1, 0.5f}, {wsyn_param_lfo_rate1, 2.0f}}),
         state);
  EXPECT_EQ(state->lfo_step1, 512.0f);
  state->lfo_phase1 = 256.7f;
  wsyn_modulate_pitch(0.0f, 0, state.get());
  EXPECT_EQ(state->pitch_mod1, 1.5);
  wsyn_modulate_pitch(0.0f, 0, state.get());
  EXPECT_EQ(state->pitch_mod1, 0.5);
  EXPECT_NEAR(state->lfo_phase1, 256.7f, 1e-4) << "1024 is one turn";

  state->lfo_phase1 = 512.0f;
  wsyn_modulate_pitch(0.0f, 0, state.get());
  EXPECT_EQ(state->lfo_phase1, 0.0f);
  for (const float phase : {1024.0f, -1.0f, infinity, nan}) {
    state->lfo_phase1 = phase;
    wsyn_modulate_pitch(0.0f, 0, state.get());
    EXPECT_EQ(state->pitch_mod1, 1.0) << "outside the table at " << phase;
  }
}

TEST(ModulatePitch, LevelAndCrossingsAndNothing) {
  const auto state = committed({{wsyn_param_pitch_source1, 1.0f},
                                {wsyn_param_pitch_depth1, 0.25f},
                                {wsyn_param_pitch_source2, 2.0f},
                                {wsyn_param_pitch_depth2, -2.0f}});
  state->lfo_phase1 = state->lfo_phase2 = 5.0f;
  wsyn_modulate_pitch(0.5f, 100, state.get());
  EXPECT_EQ(state->pitch_mod1, 1.125);
  EXPECT_EQ(state->pitch_mod2, static_cast<double>(static_cast<float>(100 * 0.01594387755102041)) * -2.0 + 1.0);
  state->pitch_source1 = 0.5f, state->pitch_source2 = 3.0f;
  wsyn_modulate_pitch(0.5f, 100, state.get());
  EXPECT_EQ(state->pitch_mod1, 1.0);
  EXPECT_EQ(state->pitch_mod2, 1.0);
  EXPECT_EQ(state->lfo_phase1, 5.0f) << "only the LFO source moves the phase";
}

// --- Filter smoothing ---

TEST(AdvanceFilter, CoversTwoThirdsOfTheWayInItsTimeConstantAndSettles) {
  const auto state = committed({{wsyn_param_cutoff, 1.0f}, {wsyn_param_resonance, 0.5f}});
  for (int i = 0; i < 3000; ++i) wsyn_advance_filter(state.get());
  EXPECT_NEAR(state->cutoff_now, 0.8 * (1 - std::exp(-1.0)), 1e-3);
  for (int i = 0; i < 100000; ++i) wsyn_advance_filter(state.get());
  EXPECT_NEAR(state->cutoff_now, 0.8f, 2e-4);
}

TEST(AdvanceFilter, DerivesTheSameWhetherItHasSettledOrNot) {
  const auto state = committed({{wsyn_param_cutoff, 0.7f}, {wsyn_param_resonance, 0.5f}});
  for (int i = 0; i < 120000; ++i) {
    wsyn_advance_filter(state.get());
    if (i % 1000 != 0) continue;
    const float c = state->cutoff_now;
    const float feedback = static_cast<float>(std::pow(static_cast<double>(1.0f - c), 6.0)) * 100.0f;
    ASSERT_EQ(state->filter_feedback, feedback);
    ASSERT_EQ(state->filter_scale, 1.0f / (feedback + 1.0f));
    ASSERT_EQ(state->filter_amount, (c + 1.0f) * 0.5f * state->filter_gain);
  }
  EXPECT_NEAR(state->filter_gain, 0.75 * 2.208, 1e-6);
  // A commit with another resonance reaches a filter at rest.
  commit(with(plain_params(), {{wsyn_param_cutoff, 0.7f}, {wsyn_param_resonance, 1.0f}}), state);
  EXPECT_EQ(state->filter_amount, (state->cutoff_now + 1.0f) * 0.5f * state->filter_gain);
  EXPECT_NEAR(state->filter_gain, 2.208, 1e-6);
}

}  // namespace
