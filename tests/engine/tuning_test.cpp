// MIT License.
#include <gtest/gtest.h>

#include "tests/engine/engine_words.h"

namespace {

constexpr size_t second = 44100;

waveform play(const sound_values& sound, int32_t note) {
  const instance_ptr instance = make_instance();
  vocoder_note_on(note, 127, instance.get());
  return run(sound, noise(3 * second, 0.3F), {}, 512, instance.get()).left;
}

double heard_cents(const sound_values& sound, int32_t note, double expected_hz) {
  return cents(partial_hz(play(sound, note), second, 2 * second, expected_hz), expected_hz);
}

sound_values dry_carrier(const sound_values& sound) {
  sound_values dry = sound;
  dry[value_wet_gain] = 0.0F;
  dry[value_dry_carrier_gain] = 1.0F;
  return dry;
}

TEST(Tuning, OfComputedShapesIsWithin3CentsOverTheKeyboard) {
  for (const int32_t note : {36, 48, 57, 60, 72, 83, 96}) {
    EXPECT_NEAR(heard_cents(dry_carrier(plain_sound(2.0F)), note, note_hz(note)), 0.0, 3.0) << note;
  }
}

// Loop 0 is long: a phase beyond 32768 in single precision moves in steps of 1/256, which costs low notes 5 cents.
TEST(Tuning, OfSampleLoopsIsThatOfTheKeyboard) {
  for (int wave = 0; wave < 6; ++wave) {
    sound_values sound = dry_carrier(plain_sound(2.0F));
    sound[value_octave] = 0.0F;
    sound[value_sampled] = 1.0F;
    sound[value_wave1] = sound[value_wave2] = static_cast<float>(wave);
    for (const int32_t note : {42, 50, 57, 60, 62, 72}) {
      const double heard = centre_hz(play(sound, note), second, 2 * second, note_hz(note));
      EXPECT_NEAR(cents(heard, note_hz(note)), 0.0, wave == 0 ? 6.0 : 3.0) << "loop " << wave << ", note " << note;
    }
  }
}

}  // namespace
