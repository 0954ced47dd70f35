// MIT License. The signal path from the two inputs to the mix against a plain engine in simple loops: bit for bit where
// the engine computes what the plain one does, and in decibels where it keeps phases as directions.
#include "engine/frame_step.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

#include "dsp/fft.h"
#include "dsp/noise.h"
#include "engine/parameter_commit.h"
#include "engine/voco_process.h"
#include "engine/voco_state.h"
#include "tests/engine/plain_engine.h"

namespace {

constexpr size_t hop = 512;

// Relative to the power that there should be. Single precision alone comes to about -130.
constexpr double largest_phase_error_db = -100.0;

// Whether a mode's phases are directions instead of angles, or have sines and cosines of less precision than the plain
// engine's.
bool has_rounded_phases(int mode) {
  return mode == 0 || (mode >= 2 && mode <= 5) || mode == 11;
}

double power_above_300_hz(const waveform& x) {
  int32_t log2_size = 0;
  std::array<float, hop / 4 + 1> table;
  fft_cos_table_init(&log2_size, hop, table.data());
  waveform spectrum;
  for (const float sample : windowed(x)) spectrum.insert(spectrum.end(), {sample, 0.0F});
  fft_forward(spectrum.data(), log2_size, table.data());
  double power = 0.0;
  for (size_t k = 4; k <= hop / 2; ++k) power += std::pow(spectrum[2 * k], 2.0) + std::pow(spectrum[2 * k + 1], 2.0);
  return power;
}

// The power above 300 Hz of what `found` differs by, relative to that of `expected`.
double difference_above_300_hz_db(const waveform& found, const waveform& expected) {
  waveform difference(hop);
  std::ranges::transform(found, expected, difference.begin(), std::minus());
  return decibels(power_above_300_hz(difference) / power_above_300_hz(expected));
}

waveform dull(waveform x) {
  float y = 0.0F;
  for (float& sample : x) sample = y = 0.9F * y + 0.1F * sample;
  return x;
}

// Its upper bins are louder than its lower ones, as those of a consonant are.
waveform hissing(waveform x) {
  float last = 0.0F;
  for (float& sample : x) sample -= std::exchange(last, sample);
  return x;
}

// Exact zeros between the samples: each is a crossing of its own kind.
waveform gapped(waveform x) {
  for (size_t i = 0; i < x.size(); i += 5) x[i] = 0.0F;
  return x;
}

// Every call gives new samples. The two inputs have a sequence each, as the order of a call's arguments is open.
uint32_t voice_seed = 0;
uint32_t carrier_seed = 0;

waveform voice(float level) {
  return noise(hop, level, ++voice_seed * 7919);
}
waveform carrier(float level) {
  return noise(hop, level, ++carrier_seed * 104729);
}

// The engine and the plain engine side by side, hop by hop.
class side_by_side {
 public:
  explicit side_by_side(float mode) : sound(external_carrier_sound(mode)) {
    sound[value_wet_gain] = 0.9F;
    sound[value_env_mix] = 0.3F;
    sound[value_env_attack] = 0.03F;
    sound[value_env_release] = 0.05F;
    sound[value_env_average] = 0.2F;
    sound[value_pitch_source1] = 1.0F;
    sound[value_pitch_depth1] = 0.25F;
    sound[value_pitch_source2] = 2.0F;
    sound[value_pitch_depth2] = 0.5F;
    voice_seed = carrier_seed = 0;
    noise_state = 1;
    commit();
    judge_ = plain::engine(noise_state);  // the first commit has drawn the noise loop
  }

  sound_values sound;

  void hear(waveform first, waveform second) {
    const stereo expected = judge_.run_hop(sound, first, second);
    commit();
    waveform left(hop), right(hop);
    voco_process(first.data(), second.data(), left.data(), right.data(), hop, engine_.get());
    ++hops_;
    SCOPED_TRACE("mode " + std::to_string(sound[value_mode]) + ", hop " + std::to_string(hops_));
    judge(left, expected.left);
    judge(right, expected.right);
    older_mode_ = std::exchange(last_mode_, static_cast<int>(sound[value_mode]));
    EXPECT_EQ(engine_->synth.pitch_mod1, double{judge_.level} * 0.25 + 1.0);
    EXPECT_EQ(engine_->synth.pitch_mod2,
              double{static_cast<float>(judge_.crossings * 0.01594387755102041)} * 0.5 + 1.0);
    EXPECT_EQ(engine_->noise_draw_a, judge_.draw_a);
    EXPECT_EQ(engine_->noise_draw_b, judge_.draw_b);
    loudness += peak(left) * peak(right);
  }

  float loudness = 0.0F;

 private:
  void judge(const waveform& found, const waveform& expected) const {
    if (found == expected) return;
    ASSERT_TRUE(has_rounded_phases(last_mode_) || has_rounded_phases(older_mode_));
    EXPECT_LT(difference_above_300_hz_db(found, expected), largest_phase_error_db);
  }

  void commit() {
    voco_params params = voco_params_from(sound, 0.0F, 44100.0F);
    voco_commit(&params, engine_.get());
  }

  std::unique_ptr<voco_state> engine_ = std::make_unique<voco_state>();
  plain::engine judge_{1};
  int hops_ = 0;
  int last_mode_ = 15;  // of the two frames that a hop consists of
  int older_mode_ = 15;
};

class EveryMode : public testing::TestWithParam<int> {};

TEST_P(EveryMode, EqualsThePlainEngine) {
  side_by_side both(static_cast<float>(GetParam()));
  for (int i = 0; i < 3; ++i) both.hear(dull(voice(0.7F)), carrier(0.5F));

  // Freeze, with and without sibilance.
  both.sound[value_freeze_on] = 1.0F;
  both.hear(voice(0.9F), carrier(0.8F));
  both.hear(voice(0.1F), carrier(0.4F));
  both.sound[value_freeze_on] = 0.0F;
  both.hear(voice(0.1F), carrier(0.4F));

  both.sound[value_sibilance_on] = 1.0F;
  both.hear(voice(0.7F), carrier(0.5F));
  both.sound[value_freeze_on] = 1.0F;
  both.hear(voice(0.7F), carrier(0.5F));
  both.sound[value_freeze_on] = 0.0F;

  // Noise in place of the carrier: consonants, ever quieter, and vowels.
  both.sound[value_noise_on] = 1.0F;
  for (const float level : {0.5F, 0.5F, 5e-5F, 2e-5F, 1e-5F, 5e-6F}) both.hear(hissing(voice(level)), carrier(0.5F));
  for (int i = 0; i < 2; ++i) both.hear(dull(voice(0.7F)), carrier(0.5F));
  both.sound[value_sibilance_on] = 2.0F;
  both.sound[value_noise_on] = 2.0F;
  for (int i = 0; i < 2; ++i) both.hear(hissing(voice(0.5F)), carrier(0.5F));
  both.sound[value_sibilance_on] = both.sound[value_noise_on] = 0.0F;
  both.hear(hissing(voice(0.5F)), carrier(0.5F));

  // Hotter than full scale, and carriers about each of the levels below which they count as silent.
  both.hear(gapped(voice(2.0F)), carrier(3.0F));
  for (const float level : {0.03F, 0.01F, 1e-3F, 1e-4F, 3e-5F, 1e-5F, 0.0F, 0.0F})
    both.hear(voice(0.5F), carrier(level));
  both.hear(voice(0.5F), carrier(0.5F));

  // Another mode and back, then a voice that comes and goes.
  both.sound[value_mode] = static_cast<float>((GetParam() + 5) % 15);
  both.hear(voice(0.5F), carrier(0.5F));
  both.sound[value_mode] = static_cast<float>(GetParam()) + 0.9F;
  both.sound[value_freeze_on] = 1.0F;
  both.hear(voice(0.5F), carrier(0.5F));
  both.sound[value_freeze_on] = 0.0F;
  both.sound[value_env_mix] = 1.0F;
  for (const float level : {0.2F, 0.0F, 0.0F, 0.6F}) both.hear(voice(level), carrier(0.5F));

  // The dry signals, a frame late.
  both.sound[value_wet_gain] = 1.5F;
  both.sound[value_dry_carrier_gain] = 0.4F;
  both.sound[value_dry_modulator_gain] = 0.3F;
  for (int i = 0; i < 3; ++i) both.hear(voice(0.5F), carrier(0.5F));
  EXPECT_GT(both.loudness, 1.0F);
}

// Outside 0 to 14 the carrier passes the transform.
INSTANTIATE_TEST_SUITE_P(Numbers, EveryMode, testing::Range(0, 16));

// Many frames whose upper bins are about as loud as their lower ones, then some that are about as quiet as those that
// never count.
TEST(FrameStep, FindsTheUnvoicedFramesThatThePlainEngineFinds) {
  side_by_side both(2.0F);
  both.sound[value_noise_on] = 1.0F;
  for (int i = 0; i < 80; ++i) both.hear(voice(0.5F), carrier(0.1F));
  for (float level = 5e-6F; level < 2.5e-5F; level *= 1.02F) both.hear(voice(level), carrier(0.1F));
}

// Tones, whose bins are far from equally loud, then carriers whose squares leave the range of single precision, and
// silence.
TEST(FrameStep, KeepsThePhasesOfTonesExtremesAndSilence) {
  constexpr size_t hops = 18;
  const waveform sung = vowel(hops * hop, 700.0, 0.1);
  const waveform tone = sine(hops * hop, 220.5, 0.4);
  for (const float mode : {0.0F, 2.0F, 3.0F, 5.0F, 11.0F}) {
    side_by_side both(mode);
    auto hear = [&, i = size_t{0}](float voice_gain, float carrier_gain) mutable {
      waveform first(&sung[i], &sung[i] + hop);
      waveform second(&tone[i], &tone[i] + hop);
      for (float& sample : first) sample *= voice_gain;
      for (float& sample : second) sample *= carrier_gain;
      both.hear(first, second);
      i += hop;
    };
    for (int i = 0; i < 6; ++i) hear(1.0F, 1.0F);
    both.sound[value_freeze_on] = 1.0F;
    for (const float gain : {1.0F, 1e-19F, 1e-19F, 1e-24F, 1e-24F, 0.0F, 0.0F}) hear(1.0F, gain);
    for (int i = 0; i < 2; ++i) hear(0.0F, 0.0F);
    if (mode == 2.0F) {  // whose level isn't the carrier's, so it doesn't overflow
      for (const float gain : {1e20F, 0.0F, 0.0F}) hear(0.0F, gain);
    }
    EXPECT_GT(both.loudness, 0.0F);
  }
}

// What the decibels above would hide.
TEST(SmoothMagnitudes, EqualsThePlainFormBitForBitAtEveryWidthInTurn) {
  smoothing_tables tables;
  plain::frame magnitudes{};
  std::ranges::copy(noise(513, 2.0F), magnitudes.begin());
  for (const size_t width : {512U, 128U, 32U, 128U}) {
    waveform result(513);
    smooth_magnitudes(magnitudes.data(), 1024, static_cast<int32_t>(width), result.data(), &tables);
    EXPECT_EQ(result, plain::smoothed(magnitudes, width)) << width;
  }
}

}  // namespace
