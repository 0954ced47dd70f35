// MIT License. Tests of renderings on a terminal, and of those that a signal or a full device ends.
#include <fcntl.h>
#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <string>
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

// Bars look like "[####....]  10 %", each on top of the one before.
TEST_F(EndOfRendering, ClearsTheProgressBarThatGrewTillThen) {
  write_recording(voice, voice_of(60.0));
  const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
  ASSERT_GE(terminal, 0);
  ASSERT_EQ(grantpt(terminal), 0);
  ASSERT_EQ(unlockpt(terminal), 0);
  const pid_t process = start({voice, output}, folder.path("out"), ptsname(terminal));
  std::string shown;
  char piece[4096];
  for (ssize_t count = 0; (count = read(terminal, piece, sizeof piece)) > 0;) {
    shown.append(piece, static_cast<std::size_t>(count));
  }
  close(terminal);
  EXPECT_EQ(status_of(process), 0);

  EXPECT_TRUE(shown.ends_with("\r\033[K")) << shown;
  int last = 0;
  for (std::size_t at = shown.find("\r["); at != std::string::npos; at = shown.find("\r[", at + 1)) {
    const std::size_t end = shown.find(']', at);
    ASSERT_EQ(end - at, 42U) << "a bar of 40 characters: " << shown;
    int per_cent = -1;
    std::istringstream(shown.substr(end + 1)) >> per_cent;
    const auto filled = std::count(shown.begin() + static_cast<std::ptrdiff_t>(at),
                                   shown.begin() + static_cast<std::ptrdiff_t>(end), '#');
    EXPECT_NEAR(static_cast<double>(filled), 0.4 * per_cent, 1.0) << shown;
    EXPECT_GE(per_cent, last) << shown;
    last = per_cent;
  }
  EXPECT_GT(last, 20);
  EXPECT_LE(last, 100);
}
