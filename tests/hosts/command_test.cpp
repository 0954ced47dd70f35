// MIT License. Tests of kesrel-render as a user runs it: rendering.
#include <signal.h>
#include <sndfile.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <thread>

#include "hosts/effect/finding.h"
#include "hosts/effect/sounds.h"
#include "tests/hosts/command.h"

namespace fs = std::filesystem;

using Command = command_fixture;

static float peak_of(const recording& content) {
  float peak = 0.0F;
  for (const float sample : content.samples) peak = std::max(peak, std::abs(sample));
  return peak;
}

// Infinite for different lengths.
static float largest_difference(const recording& one, const recording& other) {
  if (one.samples.size() != other.samples.size()) return HUGE_VALF;
  float difference = 0.0F;
  for (std::size_t i = 0; i < one.samples.size(); ++i) {
    difference = std::max(difference, std::abs(one.samples[i] - other.samples[i]));
  }
  return difference;
}

TEST_F(Command, TellsHelpVersionAndSounds) {
  const auto help = done({"--help"});
  for (const char* option : {"--sound", "--keys", "--no-chorus", "--program", "--load-state", "--save-state",
                             "--module-rate", "at 2000 to 768000 Hz", "SIGHUP, SIGINT, SIGPIPE, SIGTERM"}) {
    EXPECT_TRUE(speaks_of(help, option)) << option;
  }
  EXPECT_EQ(done({"--version"}).rfind("kesrel-render ", 0), 0U);
  const auto list = done({"--list-sounds"});
  EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 58);
}

TEST_F(Command, WritesStereoOf24BitsAtTheRateOfTheVoiceAndSaysSo) {
  write_file(folder.file("real.wav"), "older");
  fs::create_symlink("real.wav", output);
  EXPECT_TRUE(speaks_of(done({voice, output}), " LUFS, "));
  const auto content = read_recording(output);
  EXPECT_EQ(content.channels, 2);
  EXPECT_EQ(content.rate_hz, 44100);
  EXPECT_EQ(content.format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
  EXPECT_GT(peak_of(content), 0.001F);
  EXPECT_TRUE(fs::is_symlink(output)) << "an older output is replaced where links lead to";
  EXPECT_EQ(folder.listing(), (std::vector<std::string>{"out.wav", "real.wav", "voice.wav"}));
  EXPECT_EQ(done({voice, output, "--quiet"}), "");
}

TEST_F(Command, LetsTheTailFadeToSilence) {
  for (const char* reverb : {"--no-reverb", "--reverb"}) {
    const auto content = rendered({reverb});
    EXPECT_GT(content.frames(), voice_of(0.4).frames() + 1024);
    for (std::size_t i = content.samples.size() - 64; i < content.samples.size(); ++i) {
      EXPECT_LT(std::abs(content.samples[i]), 0.001F) << reverb;
    }
  }
}

TEST_F(Command, TakesMonoAndStereoAtAnyRate) {
  for (const int rate : {8000, 11025, 44100, 48000, 96000}) {
    write_recording(voice, voice_of(0.3, rate));
    const auto mono = rendered({"--compensate", "--float"});
    EXPECT_EQ(mono.rate_hz, rate);
    EXPECT_EQ(mono.frames(), voice_of(0.3, rate).frames());
    EXPECT_GT(peak_of(mono), 0.001F) << rate;
    write_recording(voice, voice_of(0.3, rate, 2));
    EXPECT_TRUE(rendered({"--compensate", "--float"}).samples == mono.samples) << rate;
  }
}

// Blocks that don't fit the effect's grid would detune it at other rates than its own.
TEST_F(Command, GivesTheSameInBlocksOfAnyLength) {
  for (const int rate : {44100, 48000}) {
    write_recording(voice, voice_of(0.4, rate));
    const auto reference = rendered({"--float", "--compensate"});
    for (const char* block : {"1", "511", "4096"}) {
      const auto content = rendered({"--float", "--compensate", "--block", block});
      EXPECT_LT(largest_difference(content, reference), 1e-3F * peak_of(reference)) << rate << ", " << block;
    }
  }
}

TEST_F(Command, CompensatesByDroppingTheLatencyAlone) {
  for (const auto& [rate, latency] : {std::pair{16000, 372}, {44100, 1024}, {96000, 2229}}) {
    write_recording(voice, voice_of(0.4, rate));
    const auto plain = rendered({"--float", "--module-rate", "native"}).samples;
    const auto compensated = rendered({"--float", "--compensate", "--module-rate", "native"}).samples;
    EXPECT_TRUE(std::equal(compensated.begin(), compensated.end(), plain.begin() + 2 * latency)) << rate;
  }
}

TEST_F(Command, KeepsPeaksAboveFullScaleInFloatAndCountsThemWhenItClips) {
  auto loud = voice_of(0.4);
  for (auto& sample : loud.samples) sample *= 1000.0F;
  write_recording(voice, loud);
  EXPECT_TRUE(speaks_of(done({voice, output, "--float"}), " samples above full scale"));
  EXPECT_GT(peak_of(read_recording(output)), 1.0F);
  EXPECT_TRUE(speaks_of(done({voice, output}), ", clipped "));
  EXPECT_LE(peak_of(read_recording(output)), 1.0F);
}

TEST_F(Command, SwitchesAndKeysChangeTheSound) {
  const auto sung = [this](arguments options) {
    options.insert(options.end(), {"--float", "--compensate"});
    return rendered(options).samples;
  };
  const auto plain = sung({"--sound", "0"});
  EXPECT_TRUE(sung({"--sound", "0", "--octave"}) != plain);
  EXPECT_TRUE(sung({"--sound", "0", "--keys", "0"}) != plain);
  EXPECT_TRUE(sung({"--sound", "ring-"}) != plain);
  EXPECT_TRUE(sung({"--sound", "0", "--keys", "C3,E3,G3", "--no-chorus"}) == plain);
  // The program in use raises the keyboard.
  EXPECT_TRUE(sung({"--keys", "C4,E4,G4"}) == sung({}));
  EXPECT_TRUE(sung({"--no-octave"}) == plain);
}

TEST_F(Command, RefusesVoicesThatItCannotRead) {
  EXPECT_TRUE(speaks_of(refusal({folder.file("no\nne.wav"), output}), "no?ne.wav' doesn't exist"));
  EXPECT_TRUE(speaks_of(refusal({folder.file(""), output}), "no regular file"));
  write_file(folder.file("empty.wav"), "");
  EXPECT_TRUE(speaks_of(refusal({folder.file("empty.wav"), output}), "is empty"));
  write_file(folder.file("text.wav"), "These are words, and no samples at all.\n");
  EXPECT_TRUE(speaks_of(refusal({folder.file("text.wav"), output}), "no sound file"));
  write_recording(folder.file("header.wav"), {});
  EXPECT_TRUE(speaks_of(refusal({folder.file("header.wav"), output}), "no samples"));
  write_recording(folder.file("three.wav"), voice_of(0.1, 44100, 3));
  EXPECT_TRUE(speaks_of(refusal({folder.file("three.wav"), output}), "3 channels: possible are 1 and 2"));
  write_recording(folder.file("slow.wav"), voice_of(10.0, 100));
  EXPECT_TRUE(speaks_of(refusal({folder.file("slow.wav"), output}), "possible are 2000 to 768000"));
}

TEST_F(Command, SaysHowMuchOfAShortenedVoiceIsMissing) {
  fs::resize_file(voice, fs::file_size(voice) - std::size_t{4410} * sizeof(float));
  const auto result = run({voice, output, "--compensate"});
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(speaks_of(result.error, "voice.wav' is cut short: 0.10 of its 0.40 s are missing\n")) << result.error;
  EXPECT_EQ(read_recording(output).frames(), voice_of(0.3).frames());

  auto streamed = content_of(voice);
  streamed.replace(streamed.find("data") + 4, 4, "\xFF\xFF\xFF\xFF");
  write_file(voice, streamed);
  done({voice, output});
}

TEST_F(Command, ReplacesWhatLinksLeadToAndKeepsItsPermissions) {
  const auto target = folder.file("target.wav");
  fs::create_symlink("target.wav", folder.file("inner.wav"));
  fs::create_symlink(folder.file("inner.wav"), output);
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--save-state", target}), "is the output itself"));
  done({voice, output});
  EXPECT_TRUE(fs::is_symlink(output));
  ASSERT_TRUE(fs::is_regular_file(fs::symlink_status(target))) << "a link may lead to what isn't there yet";

  for (const auto permissions : {fs::perms{0600}, fs::perms{0664}}) {
    fs::permissions(target, permissions);
    done({voice, output});
    EXPECT_EQ(fs::status(target).permissions(), permissions);
  }
  fs::remove(target);
  fs::create_symlink("inner.wav", target);
  EXPECT_TRUE(speaks_of(refusal({voice, output}), "cannot be written: Too many levels of symbolic links"));
}

TEST_F(Command, WritesFilesWithTheLongestNames) {
  std::string wide;
  for (int i = 0; i < 125; ++i) wide += "\u00e9";
  for (const auto& name : {std::string(250, 'x'), std::string(255, 'x'), wide}) done({voice, folder.file(name)});
  EXPECT_EQ(folder.listing().size(), 4U);
}

TEST_F(Command, GivesTheReasonWhenThereIsNoRoom) {
  for (const arguments& words : {arguments{"--help"}, {"--list-sounds"}, {"--list-programs"}, {voice, output}}) {
    const auto result = run(words, "/dev/full");
    EXPECT_EQ(result.status, 2) << words[0];
    EXPECT_TRUE(speaks_of(result.error, "standard output cannot be written: No space left on device")) << words[0];
  }
  fs::remove(output);
  const file_size_limit limit(2000);
  EXPECT_TRUE(speaks_of(refusal({voice, output}), "out.wav' cannot be written: System error : File too large"));
  EXPECT_TRUE(speaks_of(refusal({"--save-state", output}), "state '" + output + "' cannot be written: File too large"));
}

TEST_F(Command, RefusesOutputsThatItCannotWrite) {
  EXPECT_TRUE(speaks_of(refusal({voice, folder.file("none/out.wav")}), "cannot be written"));
  EXPECT_TRUE(speaks_of(refusal({voice, "/dev/null"}), "no regular file"));
  const auto before = content_of(voice);
  fs::create_symlink(voice, folder.file("link.wav"));
  fs::create_hard_link(voice, folder.file("same.wav"));
  for (const char* name : {"voice.wav", "link.wav", "same.wav", "./voice.wav"}) {
    EXPECT_TRUE(speaks_of(refusal({voice, folder.file(name)}), "is the voice itself")) << name;
    EXPECT_TRUE(speaks_of(refusal({voice, output, "--save-state", folder.file(name)}), "is the voice itself"));
  }
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--save-state", folder.file("./out.wav")}), "is the output itself"));
  EXPECT_TRUE(content_of(voice) == before);
}

TEST_F(Command, RefusesOptionsThatItCannotCarryOut) {
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--sound", "58"}), "there are 0 to 57"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--keys", "36"}), "possible are 0 to 35, or C3 to B5"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--no-octave", "--keys", "C5"}), "C2 to B4"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--sound", "Ambient Indigo", "--keys", "B3"}), "C4 to B6"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--reverb", "--no-reverb"}), "--no-reverb"));
  for (const char* block : {"0", "65537", "many", "1.5", "99999999999"}) {
    EXPECT_TRUE(speaks_of(refusal({voice, output, "--block", block}), "a block has 1 to 65536 samples")) << block;
  }
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--module-rate", "48000"}), "runs at 44100 or native, not at '48000'"));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--frequency"}), "--frequency"));
  EXPECT_TRUE(speaks_of(refusal({voice, "--save-state", folder.file("a")}), "OUT.wav must be named"));
  EXPECT_TRUE(speaks_of(refusal({}), "VOICE"));
  write_recording(voice, voice_of(0.1, 192000));
  EXPECT_TRUE(speaks_of(refusal({voice, output, "--block", "2", "--module-rate", "native"}),
                        "too short at 192000 Hz: at least 3"));
}

TEST_F(Command, RefusesSoundsWithoutValuesAndNamesThoseThatHaveThem) {
  std::vector<int> with_values;
  std::vector<int> without;
  for (const auto& known : known_sounds()) (known.has_values ? with_values : without).push_back(known.number);
  if (without.empty()) GTEST_SKIP() << "all sounds have values";
  const auto text = refusal({voice, output, "--sound", std::to_string(without.front())});
  EXPECT_TRUE(speaks_of(text, "yields no output")) << text;
  EXPECT_TRUE(speaks_of(text, "sounds with output are " + runs_of(with_values) + "\n")) << text;
}

TEST_F(Command, LeavesNothingBehindWhenItIsInterrupted) {
  write_recording(voice, voice_of(600.0, 8000));
  for (const int number : {SIGINT, SIGTERM, SIGPIPE}) {
    const pid_t process = start({voice, output});
    for (int i = 0; i < 5000 && folder.listing().size() < 2; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    kill(process, number);
    EXPECT_EQ(status_of(process), -number);
    EXPECT_EQ(folder.listing(), std::vector<std::string>{"voice.wav"});
  }
}
