// MIT License. Tests of kesrel-render's command line.
#include <algorithm>
#include <sstream>
#include <string>

#include "tests/hosts/command.h"

using Options = command_fixture;

TEST_F(Options, PrintHelpVersionAndSounds) {
  const auto help = done({"--help"});
  for (const char* option : {"--sound", "--keys", "--no-chorus", "--program", "--load-state", "--save-state",
                             "--module-rate", "at 2000 to\n768000 Hz", "SIGHUP, SIGINT,\nSIGPIPE, SIGTERM"}) {
    EXPECT_TRUE(contains(help, option)) << option;
  }
  std::istringstream lines(help);
  for (std::string line; std::getline(lines, line);) EXPECT_LE(line.size(), 80U) << line;
  EXPECT_EQ(done({"--version"}).rfind("kesrel-render ", 0), 0U);
  const auto list = done({"--list-sounds"});
  EXPECT_EQ(std::count(list.begin(), list.end(), '\n'), 58);
  EXPECT_TRUE(contains(list,
                       " 56  Ambient Indigo                   Deep Vocoders              C4 (60)  "
                       "quorvant.deep_vocoders.Ambient_Indigo\n"));
}

TEST_F(Options, AreRefusedWhenTheyCannotBeApplied) {
  expect_refusal({voice, output, "--sound", "58"}, "there are 0 to 57");
  expect_refusal({voice, output, "--no-octave", "--keys", "C5"}, "C2 to B4");
  expect_refusal({voice, output, "--sound", "Ambient Indigo", "--keys", "B3"}, "C4 to B6");
  expect_refusal({voice, output, "--reverb", "--no-reverb"}, "--no-reverb");
  for (const char* block : {"0", "65537", "many", "1.5", "99999999999"}) {
    expect_refusal({voice, output, "--block", block}, "a block has 1 to 65536 samples");
  }
  expect_refusal({voice, output, "--module-rate", "48000"}, "runs at 44100 or native, not at '48000'");
  for (const char* const level : {"nan", "-nan", "inf", "0x10", "-121", "", "loud", "-14dB", "1,5"}) {
    for (const char* const option : {"--gain", "--wet", "--dry", "--normalize"}) {
      expect_refusal({voice, output, option, level}, std::string(option) + ": possible are -");
    }
  }
  expect_refusal({voice, output, "--normalize", "0.5"}, "possible are -70 to 0");
  done({voice, output, "--gain", "+1.5", "--quiet"});
  expect_refusal({voice, output, "--bpm", "nan", "--chords", "Am"}, "possible are 20 to 400, not 'nan'");
  expect_refusal({voice, output, "--bpm", "96"}, "--bpm requires --chords");
  expect_refusal({voice, output, "--chords", "0:00 Am", "--beats", "3"}, "--beats requires --bpm");
  expect_refusal({voice, output, "--chords", "0:00 Am", "--keys", "Am"}, "--keys excludes --chords");
  expect_refusal({voice, output, "--gain", "1", "--normalize", "-14"}, "--gain excludes --normalize");
  expect_refusal({voice, output, "--frequency"}, "--frequency");
  expect_refusal({voice, "--save-state", folder.path("a")}, "OUT must be named");
  expect_refusal({}, "VOICE");
  write_recording(voice, voice_of(0.1, 192000));
  expect_refusal({voice, output, "--block", "2", "--module-rate", "native"}, "too short at 192000 Hz: at least 3");
}
