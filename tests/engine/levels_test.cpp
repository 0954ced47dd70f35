// MIT License. How loud every factory sound is on either side.
//
// The figures are what the engine gave for this voice when it agreed to the last bit with its judges and with an
// independent implementation. A deliberate change of a sound is the only reason to alter one.
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

// With the chorus and the reverb, which treat left and right differently, over a chord of the internal carrier.
TEST(FactorySounds, HaveTheirLevels) {
  // clang-format off
  constexpr std::pair<double, double> sounds[] = {  // left dB, right dB
      {-15.04, -16.43},  // 0
      {-15.50, -16.25},  // 1
      {-15.45, -16.84},  // 2
      {-15.90, -16.12},  // 3
      {-19.45, -19.72},  // 4
      {-16.03, -16.74},  // 5
      {-17.56, -17.32},  // 6
      {-17.24, -17.69},  // 7
  };
  // clang-format on
  const waveform sung = voice();
  constexpr uint8_t key[] = {1};
  for (size_t number = 0; number < std::size(sounds); ++number) {
    SCOPED_TRACE(testing::Message() << "sound " << number);
    noise_state = 1;
    const instance_ptr instance = make_instance();
    for (const int32_t note : {45, 52, 61}) vocoder_note_on(note, 127, instance.get());
    stereo out{waveform(length), waveform(length)};
    for (size_t i = 0; i < length; i += 480) {
      const float* const inputs[4] = {sung.data() + i};
      float* const outputs[2] = {out.left.data() + i, out.right.data() + i};
      ASSERT_EQ(vocoder_process_sound(0, 1, 1, static_cast<int32_t>(number), key, 480, inputs, outputs, instance.get()),
                0);
    }
    EXPECT_NEAR(level_db(out.left), sounds[number].first, 0.1);
    EXPECT_NEAR(level_db(out.right), sounds[number].second, 0.1);
  }
}

}  // namespace
