// MIT License. Tests of the levels of voice and effect, and of the loudness.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "hosts/render/output.h"
#include "tests/hosts/command.h"

namespace {

using testing::HasSubstr;

recording tone_of(double seconds, int rate_hz) {
  recording tone{rate_hz, 1, 0, std::vector<float>(static_cast<std::size_t>(seconds * rate_hz))};
  for (std::size_t i = 0; i < tone.samples.size(); ++i) {
    const double turns = 440.0 * static_cast<double>(i) / rate_hz;
    const double swell = std::sin(std::numbers::pi * static_cast<double>(i) / static_cast<double>(tone.samples.size()));
    tone.samples[i] = static_cast<float>(0.5 * swell * swell * std::sin(2.0 * std::numbers::pi * turns));
  }
  return tone;
}

// The largest difference between `samples` and a sum of others with their gains, but for the fade of 10 ms at the end.
float error_of(const recording& content, const std::vector<std::pair<float, const recording*>>& sum) {
  const std::size_t fade = content.frames() - static_cast<std::size_t>(content.rate_hz / 100);
  float error = 0.0F;
  for (std::size_t frame = 0; frame < fade; ++frame) {
    float expected = 0.0F;
    for (const auto& [gain, part] : sum)
      expected += gain * part->samples[frame * static_cast<std::size_t>(part->channels)];
    error = std::max(error, std::abs(content.samples[2 * frame] - expected));
  }
  return error;
}

meters measured(const recording& content) {
  meters meter(content.rate_hz, true);
  std::vector<float> sides[2];
  for (std::size_t i = 0; i < content.samples.size(); ++i) sides[i % 2].push_back(content.samples[i]);
  meter.add(sides[0].data(), sides[1].data(), static_cast<int>(content.frames()));
  return meter;
}

double true_peak_db(const meters& meter) {
  return 20.0 * std::log10(meter.true_peak());
}

using Levels = command_fixture;

}  // namespace

TEST_F(Levels, AreInDecibelsAndAddUpToTheSample) {
  constexpr float six_db_less = 0.501187234F;
  for (const int rate : {8000, 44100, 48000, 96000}) {
    const auto tone = tone_of(0.4, rate);
    write_recording(voice, tone);
    const float accuracy = rate == 44100 ? 2e-6F : 1e-5F;  // of the rest of the effect at -120 dB, or the converter
    const auto dry = rendered({"--wet", "-120", "--dry", "-6", "--compensate", "--float"});
    EXPECT_LT(error_of(dry, {{six_db_less, &tone}}), accuracy) << rate;

    const auto wet = rendered({"--compensate", "--float"});
    EXPECT_TRUE(rendered({"--compensate", "--float", "--wet", "0"}).samples == wet.samples);
    const auto mix = rendered({"--wet", "-6", "--dry", "0", "--compensate", "--float"});
    EXPECT_LT(error_of(mix, {{six_db_less, &wet}, {1.0F, &tone}}), accuracy) << rate;
    const auto lower = rendered({"--gain", "-6", "--compensate", "--float"});
    EXPECT_LT(error_of(lower, {{six_db_less, &wet}}), 1e-7F) << rate;
  }
}

TEST_F(Levels, BringTheFileToTheLoudnessThatIsAskedFor) {
  for (const int rate : {8000, 44100, 48000}) {
    write_recording(voice, voice_of(2.0, rate));
    for (const std::string ending : {"wav", "flac", "ogg", "opus"}) {
      const bool is_lossless = ending == "wav" || ending == "flac";
      const std::string file = folder.path("out." + ending);
      done({voice, file, "--normalize", "-26"});
      EXPECT_NEAR(measured(read_recording(file)).loudness_lufs(), -26.0, is_lossless ? 0.1 : 0.5) << ending << rate;

      EXPECT_THAT(run({voice, file, "--normalize", "-5"}).error,
                  HasSubstr(" LUFS: at -5.0 its true peaks would exceed -1 dBTP"));
      const meters limited = measured(read_recording(file));
      EXPECT_LT(limited.loudness_lufs(), -5.0);
      EXPECT_NEAR(true_peak_db(limited), -1.0, is_lossless ? 0.01 : 3.0) << ending << rate;
    }
  }
  EXPECT_EQ(listing().size(), 5U) << "nothing else is left";
}

TEST_F(Levels, WarnOfWhatHasNoLoudnessOrIsClipped) {
  EXPECT_THAT(run({voice, output, "--compensate", "--normalize", "-14", "--wet", "-56"}).error,
              HasSubstr("too short or too quiet for a loudness: it isn't normalized"));
  write_recording(voice, {44100, 1, 0, std::vector<float>(44100)});
  const auto silent = run({voice, output, "--normalize", "-14"});
  EXPECT_EQ(silent.status, 0);
  EXPECT_THAT(silent.error, HasSubstr("out.wav' is silent\n"));
  EXPECT_LT(peak_of(read_recording(output)), 1e-6F);

  write_recording(voice, voice_of(0.4));
  const std::string error = run({voice, output, "--gain", "40"}).error;
  const auto advice = error.find("a --gain of ");
  ASSERT_NE(advice, std::string::npos) << error;
  done({voice, output, "--gain", error.substr(advice + 12, error.find(" dB") - advice - 12)});
  EXPECT_GT(peak_of(read_recording(output)), 0.98F);
}
