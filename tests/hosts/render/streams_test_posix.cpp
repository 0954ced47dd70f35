// MIT License. Tests of standard input and output.
#include <sndfile.h>

#include "tests/hosts/command.h"

namespace {

class Streams : public command_fixture {
 protected:
  // Runs the program by a shell, as $render and with $voice.
  static outcome run_line(const std::string& line, const std::string& voice, const std::string& out = {}) {
    return run({"-c", "render=$0; voice=$1; " + line, KESREL_RENDER, voice}, out, "/bin/sh");
  }
};

}  // namespace

TEST_F(Streams, CarryTheSameBytesAsFiles) {
  const std::string piped = folder.path("piped");
  for (const std::string format : {"wav", "flac", "ogg"}) {
    const std::string file = folder.path("out." + format);
    EXPECT_EQ(run({voice, file, "--normalize", "-30"}).status, 0);
    const auto result = run_line("\"$render\" - - --normalize -30 --format " + format + " < \"$voice\"", voice, piped);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.error.find("-: "), 0U) << "the closing line is no sound";
    EXPECT_EQ(read_recording(piped).format, read_recording(file).format);
    EXPECT_TRUE(read_recording(piped).samples == read_recording(file).samples);
  }
  EXPECT_EQ(run_line("\"$render\" - \"$voice.wav\" --quiet < \"$voice\"", voice).status, 0);
  EXPECT_EQ(run_line("\"$render\" - - --quiet < \"$voice\"", voice, piped).error, "");
  EXPECT_TRUE(read_file(piped) == read_file(voice + ".wav"));
}

TEST_F(Streams, ThatAreEmptyDamagedOrClosedEndTheProgram) {
  const auto error_of = [this](const std::string& line) {
    const auto result = run_line(line, voice);
    EXPECT_EQ(result.status, 2) << line;
    EXPECT_EQ(result.out, "") << line;
    return result.error;
  };
  EXPECT_EQ(error_of("\"$render\" - - < /dev/null"), "kesrel-render: voice on standard input is empty\n");
  EXPECT_TRUE(contains(error_of("echo words | \"$render\" - -"), "voice on standard input is no sound file"));
  EXPECT_TRUE(contains(error_of("head -c 44 \"$voice\" | \"$render\" - -"), "voice on standard input "));
  EXPECT_TRUE(contains(error_of("\"$render\" - - <&-"), "standard input"));
  const auto cut = run_line("head -c 40000 \"$voice\" | \"$render\" - \"$voice.wav\" --quiet", voice);
  EXPECT_TRUE(contains(cut.error, "warning: voice on standard input is cut short: 0.17 of its 0.40 s")) << cut.error;
  EXPECT_EQ(run_line("{ \"$render\" \"$voice\" -; echo $? >&2; } | true", voice).error, "141\n") << "by SIGPIPE";
  EXPECT_EQ(listing(), (std::vector<std::string>{"voice.wav", "voice.wav.wav"}));
}
