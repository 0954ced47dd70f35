// MIT License. Tests of renderings that a signal or a full device ends.
#include <signal.h>

#include <chrono>
#include <filesystem>
#include <iterator>
#include <thread>

#include "tests/hosts/process_posix.h"

using EndOfRendering = command_fixture;

TEST_F(EndOfRendering, BySignalLeavesNoFile) {
  write_recording(voice, voice_of(600.0, 8000));
  for (const int number : {SIGINT, SIGTERM, SIGPIPE}) {
    const pid_t process = start({voice, output});
    for (int i = 0; i < 5000 && listing().size() < 2; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    kill(process, number);
    EXPECT_EQ(status_of(process), -number);
    EXPECT_EQ(listing(), std::vector<std::string>{"voice.wav"});
  }
}

TEST_F(EndOfRendering, BySignalEndsAllRenderingsOfAnAudition) {
  write_recording(voice, voice_of(600.0, 8000));
  const pid_t process = start({"--all-sounds", folder.path("all"), voice});
  const auto has_begun = [this] {
    std::error_code none_yet;
    const std::filesystem::directory_iterator files(folder.path("all"), none_yet);
    return std::distance(begin(files), end(files)) >= 2;
  };
  for (int i = 0; i < 5000 && !has_begun(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(2));
  kill(process, SIGINT);
  EXPECT_EQ(status_of(process), -SIGINT);
  for (const auto& file : std::filesystem::directory_iterator(folder.path("all"))) {
    EXPECT_EQ(file.path().filename(), "pictures") << "no unfinished file and no page";
  }
}

TEST_F(EndOfRendering, IsAFailureWhenStandardOutputIsFull) {
  for (const arguments& words : {arguments{"--help"}, {"--list-sounds"}, {"--list-programs"}, {voice, output}}) {
    const auto result = run(words, "/dev/full");
    EXPECT_EQ(result.status, 2) << words[0];
    EXPECT_TRUE(contains(result.error, "standard output cannot be written: No space left on device")) << words[0];
  }
}
