// MIT License. How loud one factory sound of every algorithm is on either side.
//
// The figures are what the engine gives for this voice. A deliberate change of a sound is the only reason to alter one.
#include <gtest/gtest.h>

#include "dsp/noise.h"
#include "tests/engine/engine_words.h"

namespace {

constexpr size_t length = 24000;
constexpr size_t settled = 4000;  // the latency and the first frames are left out

// Two vowels with a consonant between them. The steady offset, which has a real part alone in the spectrum, makes left
// and right differ in the spectral modes.
waveform voice() {
  waveform out = vowel(length, 700.0, 0.12);
  const waveform bright = vowel(length, 2200.0, 0.08);
  const waveform hiss = noise(length, 0.3F, 3);
  for (size_t i = 10000; i < length; ++i) out[i] = i < 13000 ? hiss[i] - hiss[i - 1] : bright[i];
  for (float& sample : out) sample += 0.1F;
  return out;
}

double level_db(const waveform& x) {
  double sum = 0.0;
  for (size_t i = settled; i < x.size(); ++i) sum += double{x[i]} * double{x[i]};
  return decibels(sum / static_cast<double>(x.size() - settled));
}

struct sound_level {
  int32_t number;
  double left_db;
  double right_db;
};

// With the chorus and the reverb, which treat left and right differently, over a chord of the internal carrier.
TEST(FactorySounds, HaveTheirLevels) {
  // One sound of every algorithm.
  constexpr sound_level sounds[] = {
      // clang-format off
      {10, -22.52, -22.42},  // algorithm 0
      { 8, -22.64, -22.03},  // algorithm 1
      {16, -22.80, -23.18},  // algorithm 2
      { 0, -22.11, -21.15},  // algorithm 3
      { 9, -21.62, -21.19},  // algorithm 4
      {34, -20.39, -21.33},  // algorithm 5
      { 2, -22.29, -22.58},  // algorithm 6
      { 1, -20.10, -19.94},  // algorithm 7
      {44, -21.22, -21.56},  // algorithm 8
      {35, -19.57, -19.34},  // algorithm 9
      { 5, -23.46, -23.35},  // algorithm 10
      {26, -25.20, -25.01},  // algorithm 11
      {15, -21.31, -21.75},  // algorithm 12
      {38, -22.21, -21.83},  // algorithm 13
      { 7, -21.88, -22.34},  // algorithm 14
      // clang-format on
  };
  const waveform sung = voice();
  constexpr uint8_t key[] = {1};
  for (const sound_level& sound : sounds) {
    SCOPED_TRACE(testing::Message() << "sound " << sound.number);
    noise_state = 1;
    const instance_ptr instance = make_instance();
    for (const int32_t note : {45, 52, 61}) vocoder_note_on(note, 127, instance.get());
    stereo out{waveform(length), waveform(length)};
    for (size_t i = 0; i < length; i += 480) {
      const float* const inputs[4] = {sung.data() + i};
      float* const outputs[2] = {out.left.data() + i, out.right.data() + i};
      ASSERT_EQ(vocoder_process_sound(0, 1, 1, sound.number, key, 480, inputs, outputs, instance.get()), 0);
    }
    EXPECT_NEAR(level_db(out.left), sound.left_db, 0.1);
    EXPECT_NEAR(level_db(out.right), sound.right_db, 0.1);
  }
}

}  // namespace
