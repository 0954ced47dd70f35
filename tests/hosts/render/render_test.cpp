// MIT License. Tests of whole renderings.
#include <sndfile.h>

#include <algorithm>
#include <cmath>

#include "tests/hosts/command.h"

using Rendering = command_fixture;

namespace {

// Infinite for different lengths.
float largest_difference(const recording& one, const recording& other) {
  if (one.samples.size() != other.samples.size()) return HUGE_VALF;
  float difference = 0.0F;
  for (std::size_t i = 0; i < one.samples.size(); ++i) {
    difference = std::max(difference, std::abs(one.samples[i] - other.samples[i]));
  }
  return difference;
}

}  // namespace

TEST_F(Rendering, IsA24BitStereoFileAtTheRateOfTheVoice) {
  EXPECT_TRUE(contains(done({voice, output}), " LUFS, "));
  const auto content = read_recording(output);
  EXPECT_EQ(content.channels, 2);
  EXPECT_EQ(content.rate_hz, 44100);
  EXPECT_EQ(content.format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
  EXPECT_GT(peak_of(content), 0.001F);
  EXPECT_GT(content.frames(), voice_of(0.4).frames() + 1024);
  for (std::size_t i = content.samples.size() - 64; i < content.samples.size(); ++i) {
    EXPECT_LT(std::abs(content.samples[i]), 0.001F) << "it ends in silence";
  }
  EXPECT_EQ(listing(), (std::vector<std::string>{"out.wav", "voice.wav"}));
  EXPECT_EQ(done({voice, output, "--quiet"}), "");
}

// At other rates than its own, the effect's pitch depends on the block length.
TEST_F(Rendering, IsTheSameForMonoStereoAndAnyBlockLengthAtAnyRate) {
  for (const int rate : {8000, 44100, 48000}) {
    write_recording(voice, voice_of(0.4, rate));
    const auto mono = rendered({"--float", "--compensate"});
    EXPECT_EQ(mono.rate_hz, rate);
    EXPECT_EQ(mono.frames(), voice_of(0.4, rate).frames());
    EXPECT_GT(peak_of(mono), 0.001F) << rate;
    for (const char* block : {"1", "511", "4096"}) {
      const auto content = rendered({"--float", "--compensate", "--block", block});
      EXPECT_LT(largest_difference(content, mono), 1e-3F * peak_of(mono)) << rate << ", " << block;
    }
    write_recording(voice, voice_of(0.4, rate, 2));
    EXPECT_TRUE(rendered({"--float", "--compensate"}).samples == mono.samples) << rate;
  }
}

TEST_F(Rendering, IsShiftedByTheLatencyWhenCompensated) {
  for (const auto& [rate, latency] : {std::pair{16000, 372}, {44100, 1024}, {96000, 2229}}) {
    write_recording(voice, voice_of(0.4, rate));
    const auto plain = rendered({"--float", "--module-rate", "native"}).samples;
    const auto compensated = rendered({"--float", "--compensate", "--module-rate", "native"}).samples;
    const int fade = 2 * rate / 100;
    EXPECT_TRUE(std::equal(compensated.begin(), compensated.end() - fade, plain.begin() + 2 * latency)) << rate;
    EXPECT_LT(std::abs(compensated.back()), 1e-4F);
  }
}

TEST_F(Rendering, FollowsSoundKeysAndSwitches) {
  const auto samples_with = [this](arguments options) {
    options.insert(options.end(), {"--float", "--compensate"});
    return rendered(options).samples;
  };
  const auto plain = samples_with({"--sound", "0"});
  EXPECT_TRUE(samples_with({"--sound", "0", "--octave"}) != plain);
  EXPECT_TRUE(samples_with({"--sound", "0", "--keys", "0"}) != plain);
  EXPECT_TRUE(samples_with({"--sound", "ring-"}) != plain);
  EXPECT_TRUE(samples_with({"--sound", "0", "--keys", "C3,E3,G3", "--no-chorus"}) == plain);
  // The first program raises the keyboard.
  EXPECT_TRUE(samples_with({"--keys", "C4,E4,G4"}) == samples_with({}));
  EXPECT_TRUE(samples_with({"--no-octave"}) == plain);
}
