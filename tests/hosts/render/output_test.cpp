// MIT License. Tests of measuring and writing the output.
#include "hosts/render/output.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "tests/hosts/command.h"

using Output = command_fixture;

TEST(Meters, GiveThePeakAndCountSamplesAboveFullScale) {
  meters meter(44100);
  const float left[] = {0.5F, -1.5F, 1.0F, 0.0F};
  const float right[] = {0.0F, 1.25F, -1.0F, 0.0F};
  meter.add(left, right, 4);
  EXPECT_EQ(meter.peak(), 1.5F);
  EXPECT_EQ(meter.samples_above_full_scale(), 2);
  EXPECT_EQ(meter.loudness_lufs(), -HUGE_VAL) << "too short for a loudness";
}

// EBU Tech 3341, case 1: a stereo sine of 1 kHz at -23 dBFS per channel measures -23 LUFS.
TEST(Meters, GiveTheLoudnessOfTheReferenceTone) {
  meters meter(48000);
  std::vector<float> tone(48000 * 5);
  for (std::size_t i = 0; i < tone.size(); ++i) {
    tone[i] = static_cast<float>(std::pow(10.0, -23.0 / 20.0) *
                                 std::sin(2.0 * std::numbers::pi * 1000.0 * static_cast<double>(i) / 48000.0));
  }
  meter.add(tone.data(), tone.data(), static_cast<int>(tone.size()));
  EXPECT_NEAR(meter.loudness_lufs(), -23.0, 0.1);
}

TEST_F(Output, ClipsAtFullScaleIn24BitsButNotInFloat) {
  auto loud = voice_of(0.4);
  for (auto& sample : loud.samples) sample *= 1000.0F;
  write_recording(voice, loud);
  EXPECT_TRUE(contains(done({voice, output, "--float"}), " samples above full scale"));
  const auto unlimited = read_recording(output);
  EXPECT_GT(peak_of(unlimited), 1.0F);
  const auto result = run({voice, output});
  EXPECT_TRUE(contains(result.out, ", clipped "));
  EXPECT_TRUE(contains(result.error, "out.wav' is clipped: a --gain of -"));
  const auto clipped = read_recording(output);
  ASSERT_EQ(clipped.samples.size(), unlimited.samples.size());
  for (std::size_t i = 0; i < clipped.samples.size(); ++i) {
    ASSERT_NEAR(clipped.samples[i], std::clamp(unlimited.samples[i], -1.0F, 1.0F), 1e-6F) << i;
  }
}
