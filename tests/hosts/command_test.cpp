// MIT License. Tests of kesrel-render as a user runs it.
#include <gtest/gtest.h>
#include <signal.h>
#include <sndfile.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <fstream>
#include <thread>

#include "tests/hosts/command.h"

namespace fs = std::filesystem;

// One voice in a folder of its own; each test looks at what else is there afterwards.
class Command : public testing::Test {
 protected:
  Command() { write_recording(voice, voice_of(0.4)); }

  outcome render(arguments options) {
    options.insert(options.begin(), {voice, output});
    return run(options);
  }

  // The refusal's text, after checking that it was one line and left nothing.
  std::string refusal(const arguments& words) {
    const auto before = folder.listing();
    const auto result = run(words);
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(std::count(result.error.begin(), result.error.end(), '\n'), 1) << result.error;
    EXPECT_EQ(folder.listing(), before);
    return result.error;
  }

  recording rendered(const arguments& options) {
    const auto result = render(options);
    EXPECT_EQ(result.status, 0) << result.error;
    return read_recording(output);
  }

  scratch_folder folder;
  const std::string voice = folder.file("voice.wav");
  const std::string output = folder.file("out.wav");
};

static float peak_of(const recording& content) {
  float peak = 0.0F;
  for (const float sample : content.samples) peak = std::max(peak, std::abs(sample));
  return peak;
}

static bool speaks_of(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

TEST_F(Command, TellsHelpVersionAndSounds) {
  const auto help = run({"--help"});
  EXPECT_EQ(help.status, 0);
  for (const char* option : {"--sound", "--keys", "--chorus", "--reverb", "--octave", "--block", "--compensate",
                             "--float", "--list-sounds", "--quiet", "--version"}) {
    EXPECT_TRUE(speaks_of(help.out, option)) << option;
  }
  const auto version = run({"--version"});
  EXPECT_EQ(version.status, 0);
  EXPECT_EQ(version.out.rfind("kesrel-render ", 0), 0U) << version.out;

  const auto list = run({"--list-sounds"});
  EXPECT_EQ(list.status, 0);
  EXPECT_EQ(std::count(list.out.begin(), list.out.end(), '\n'), 58);
  EXPECT_TRUE(speaks_of(list.out, "Ambient Indigo"));
  EXPECT_EQ(list.error, "");
}

TEST_F(Command, WritesStereoOf24BitsAtTheRateOfTheVoiceAndSaysSo) {
  const auto result = render({});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.error, "") << "no progress bar in a pipe";
  EXPECT_TRUE(speaks_of(result.out, " LUFS, ")) << result.out;
  const auto content = read_recording(output);
  EXPECT_EQ(content.channels, 2);
  EXPECT_EQ(content.rate_hz, 44100);
  EXPECT_EQ(content.format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
  EXPECT_GT(peak_of(content), 0.001F);
  EXPECT_EQ(folder.listing(), (std::vector<std::string>{"out.wav", "voice.wav"}));
}

TEST_F(Command, IsSilentWhenQuiet) {
  const auto result = render({"--quiet"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.out + result.error, "");
}

TEST_F(Command, LetsTheTailFadeToSilence) {
  const auto content = rendered({});
  EXPECT_GT(content.frames(), voice_of(0.4).frames() + 1024);
  for (std::size_t i = content.samples.size() - 64; i < content.samples.size(); ++i) {
    EXPECT_LT(std::abs(content.samples[i]), 0.001F);
  }
}

TEST_F(Command, ReplacesAnOlderOutput) {
  std::ofstream(output) << "older";
  EXPECT_EQ(rendered({}).channels, 2);
}

TEST_F(Command, WritesThroughALink) {
  std::ofstream(folder.file("real.wav")) << "older";
  fs::create_symlink("real.wav", output);
  EXPECT_EQ(rendered({}).channels, 2);
  EXPECT_TRUE(fs::is_symlink(output));
}

TEST_F(Command, TakesMonoAndStereoAtAnyRate) {
  for (const int rate : {8000, 11025, 22050, 32000, 44100, 48000, 96000}) {
    for (const int channels : {1, 2}) {
      write_recording(voice, voice_of(0.3, rate, channels));
      const auto content = rendered({"--compensate", "--float"});
      EXPECT_EQ(content.rate_hz, rate);
      EXPECT_EQ(content.frames(), voice_of(0.3, rate).frames());
      EXPECT_GT(peak_of(content), 0.001F) << rate << " Hz, " << channels << " channels";
    }
  }
}

TEST_F(Command, HearsMonoLikeTheLeftOfStereo) {
  const auto mono = rendered({"--float"});
  write_recording(voice, voice_of(0.4, 44100, 2));
  EXPECT_TRUE(rendered({"--float"}).samples == mono.samples);
}

TEST_F(Command, GivesTheSameInBlocksOfAnyLength) {
  const auto reference = rendered({"--float", "--compensate"});
  for (const char* block : {"1", "7", "511", "1023", "4096"}) {
    const auto content = rendered({"--float", "--compensate", "--block", block});
    ASSERT_EQ(content.frames(), reference.frames()) << block;
    float difference = 0.0F;
    for (std::size_t i = 0; i < content.samples.size(); ++i) {
      difference = std::max(difference, std::abs(content.samples[i] - reference.samples[i]));
    }
    EXPECT_LT(difference, 1e-3F * peak_of(reference)) << block;
  }
}

TEST_F(Command, CompensatesByDroppingTheLatencyAlone) {
  for (const auto& [rate, latency] : {std::pair{44100, 1024}, {48000, 1115}}) {
    write_recording(voice, voice_of(0.4, rate));
    const auto plain = rendered({"--float"});
    const auto compensated = rendered({"--float", "--compensate"});
    EXPECT_EQ(compensated.frames(), voice_of(0.4, rate).frames());
    EXPECT_TRUE(
        std::equal(compensated.samples.begin(), compensated.samples.end(), plain.samples.begin() + 2 * latency));
  }
}

// Where the middle of the sound lies, in seconds.
static double centre_of(const recording& content) {
  double moment = 0.0;
  double energy = 0.0;
  for (std::size_t i = 0; i < content.samples.size(); ++i) {
    const double power = static_cast<double>(content.samples[i]) * static_cast<double>(content.samples[i]);
    moment += power * static_cast<double>(i / static_cast<std::size_t>(content.channels));
    energy += power;
  }
  return moment / energy / content.rate_hz;
}

TEST_F(Command, PutsTheSoundWhereTheVoiceIsWhenItCompensates) {
  for (const int rate : {16000, 44100, 96000}) {
    auto burst = voice_of(1.0, rate);
    const auto from = static_cast<std::size_t>(0.5 * rate);
    for (std::size_t i = 0; i < burst.samples.size(); ++i) {
      if (i < from || i >= from + static_cast<std::size_t>(rate / 4)) burst.samples[i] = 0.0F;
    }
    write_recording(voice, burst);
    // Frames of 23 ms and the fall of the envelopes blur the sound, but less than the latency would shift it.
    EXPECT_NEAR(centre_of(rendered({"--float", "--compensate"})), centre_of(burst), 0.02) << rate;
  }
}

TEST_F(Command, KeepsPeaksAboveFullScaleInFloatAndCountsThemWhenItClips) {
  auto loud = voice_of(0.4);
  for (auto& sample : loud.samples) sample *= 1000.0F;
  write_recording(voice, loud);
  const auto in_float = render({"--float"});
  EXPECT_TRUE(speaks_of(in_float.out, " samples above full scale")) << in_float.out;
  EXPECT_GT(peak_of(read_recording(output)), 1.0F);
  const auto in_24_bits = render({});
  EXPECT_TRUE(speaks_of(in_24_bits.out, ", clipped ")) << in_24_bits.out;
  EXPECT_LE(peak_of(read_recording(output)), 1.0F);
}

TEST_F(Command, SwitchesAndKeysChangeTheSound) {
  const auto sung = [this](arguments options) {
    options.insert(options.end(), {"--float", "--compensate"});
    return rendered(options).samples;
  };
  const auto plain = sung({});
  EXPECT_TRUE(sung({"--octave"}) != plain);
  EXPECT_TRUE(sung({"--keys", "0"}) != plain);
  EXPECT_TRUE(sung({"--sound", "ring-"}) != plain);
  EXPECT_TRUE(sung({"--keys", "C3,E3,G3"}) == plain);
  EXPECT_TRUE(sung({"--octave", "--keys", "C4,E4,G4"}) == sung({"--octave"}));
}

TEST_F(Command, SurvivesSamplesThatAreNoNumbers) {
  auto broken = voice_of(0.4);
  broken.samples[100] = NAN;
  broken.samples[5000] = INFINITY;
  broken.samples[9000] = -INFINITY;
  write_recording(voice, broken);
  for (const float sample : rendered({"--float"}).samples) ASSERT_TRUE(std::isfinite(sample));
}

TEST_F(Command, RefusesVoicesThatItCannotRead) {
  EXPECT_TRUE(speaks_of(refusal({folder.file("none.wav"), output}), "doesn't exist"));
  EXPECT_TRUE(speaks_of(refusal({folder.file("no\nne.wav"), output}), "no?ne.wav"));
  EXPECT_TRUE(speaks_of(refusal({folder.file(""), output}), "no regular file"));

  std::ofstream(folder.file("empty.wav")).flush();
  EXPECT_TRUE(speaks_of(refusal({folder.file("empty.wav"), output}), "is empty"));
  std::ofstream(folder.file("text.wav")) << "These are words, and no samples at all.\n";
  EXPECT_TRUE(speaks_of(refusal({folder.file("text.wav"), output}), "no sound file"));
  write_recording(folder.file("header.wav"), {});
  EXPECT_TRUE(speaks_of(refusal({folder.file("header.wav"), output}), "no samples"));
  write_recording(folder.file("three.wav"), voice_of(0.1, 44100, 3));
  EXPECT_TRUE(speaks_of(refusal({folder.file("three.wav"), output}), "3 channels: possible are 1 and 2"));
  write_recording(folder.file("slow.wav"), voice_of(10.0, 100));
  EXPECT_TRUE(speaks_of(refusal({folder.file("slow.wav"), output}), "possible are 2000 to 768000"));
}

TEST_F(Command, RefusesOutputsThatItCannotWrite) {
  EXPECT_TRUE(speaks_of(refusal({voice, folder.file("none/out.wav")}), "cannot be written"));
  EXPECT_TRUE(speaks_of(refusal({voice, folder.file("")}), "no regular file"));
  EXPECT_TRUE(speaks_of(refusal({voice, "/dev/null"}), "no regular file"));
}

TEST_F(Command, RefusesToWriteOverTheVoice) {
  const auto before = read_recording(voice).samples;
  fs::create_symlink(voice, folder.file("link.wav"));
  fs::create_hard_link(voice, folder.file("same.wav"));
  for (const char* name : {"voice.wav", "link.wav", "same.wav", "./voice.wav"}) {
    EXPECT_TRUE(speaks_of(refusal({voice, folder.file(name)}), "is the voice itself")) << name;
  }
  EXPECT_TRUE(read_recording(voice).samples == before);
}

TEST_F(Command, RefusesOptionsThatItCannotCarryOut) {
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--sound", "58"}), "there are 0 to 57"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--sound", "clasic pad"}), "nearest are 'Classic Pad Vocoder'"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--sound", "detuned"}), "could be"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--keys", "36"}), "possible are 0 to 35, or C2 to B4"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--octave", "--keys", "C2"}), "C3 to B5"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--sound", "Ambient Indigo", "--keys", "B3"}), "C4 to B6"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--keys", "H4"}), "no key index or note name"));
  for (const char* block : {"0", "-1", "65537", "many", "1.5", "99999999999"}) {
    EXPECT_TRUE(speaks_of(refusal({voice, output, "--block", block}), "a block has 1 to 65536 samples")) << block;
  }
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--frequency"}), "--frequency"));
  EXPECT_TRUE(speaks_of(refusal({voice}), "OUT.wav must be named"));
  EXPECT_TRUE(speaks_of(refusal({}), "VOICE"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "third"}), "third"));

  write_recording(voice, voice_of(0.1, 192000));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--block", "2"}), "too short at 192000 Hz: at least 3"));
}

TEST_F(Command, RefusesSoundsThatYieldNoOutput) {
  // No sound of these two categories has values so far.
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--sound", "8"}), "yields no output"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--sound", "57"}), "sounds with output are 0 to 7"));
}

TEST_F(Command, LeavesNothingBehindWhenItIsInterrupted) {
  write_recording(voice, voice_of(600.0, 8000));
  for (const int number : {SIGINT, SIGTERM}) {
    const pid_t process = start({voice, output});
    for (int i = 0; i < 5000 && folder.listing().size() < 2; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    kill(process, number);
    EXPECT_EQ(status_of(process), -number);
    EXPECT_EQ(folder.listing(), std::vector<std::string>{"voice.wav"});
  }
}
