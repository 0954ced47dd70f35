// MIT License. Tests of the place of files that kesrel-render writes.
#include <filesystem>

#include "hosts/effect/paths.h"
#include "tests/hosts/command.h"

namespace fs = std::filesystem;

using PartialFile = command_fixture;

TEST_F(PartialFile, IsRefusedWhereItCannotBeWritten) {
  expect_refusal({voice, folder.path("none/out.wav")}, "cannot be written");
  expect_refusal({voice, folder.path("")}, "no regular file");
  const auto before = read_file(voice);
  fs::create_hard_link(voice, folder.path("same.wav"));
  for (const char* name : {"voice.wav", "same.wav", "./voice.wav"}) {
    expect_refusal({voice, folder.path(name)}, "is the voice itself");
    expect_refusal({voice, output, "--save-state", folder.path(name)}, "is the voice itself");
  }
  expect_refusal({voice, output, "--save-state", folder.path("./out.wav")}, "is the output itself");
  write_file(folder.path("song.wav"), "song");
  expect_refusal({voice, folder.path("./song.wav"), "--midi", folder.path("song.wav")}, "is the MIDI file itself");
  expect_refusal({voice, folder.path("./song.wav"), "--load-state", folder.path("song.wav")}, "is the state to load");
  expect_refusal({voice, output, "--midi", folder.path("song.wav"), "--save-state", folder.path("song.wav")},
                 "is the MIDI file itself");
  EXPECT_EQ(read_file(folder.path("song.wav")), "song");
  EXPECT_TRUE(read_file(voice) == before);
}

TEST_F(PartialFile, MayHaveANameInAnyScript) {
  const std::string name = "\u0433\u043e\u043b\u043e\u0441 \u58f0 \u00e9";
  const std::string sung = folder.path("sung ") + name + ".wav";
  const std::string sounded = folder.path("") + name + ".wav";
  const std::string state = folder.path("") + name + ".fxb";
  fs::rename(path_of(voice), path_of(sounded));
  EXPECT_TRUE(contains(done({sounded, sung, "--save-state", state}), name + ".wav: "));
  done({sounded, output, "--load-state", state});
  expect_refusal({sounded, output, "--load-state", sung}, name + ".wav' is no state");
  fs::rename(path_of(sung), path_of(folder.path("renamed.wav")));
  EXPECT_TRUE(read_file(folder.path("renamed.wav")) == read_file(output));
}
