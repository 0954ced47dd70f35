// MIT License. Words for tests that run kesrel-render, or another host, as a user does.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/words/files.h"
#include "tests/words/temporary_folder.h"

using arguments = std::vector<std::string>;

struct outcome {
  int status;         // exit status, or on POSIX -n after signal n
  std::string out;    // standard output
  std::string error;  // standard error
};

// Runs the program to its end. With `out`, its standard output goes to that file and isn't returned.
outcome run(const arguments& words, const std::string& out = {}, const char* program = KESREL_RENDER);

// Samples of a sound file, interleaved.
struct recording {
  int rate_hz = 44100;
  int channels = 1;
  int format = 0;  // libsndfile's
  std::vector<float> samples;

  std::size_t frames() const { return samples.size() / static_cast<std::size_t>(channels); }
};

recording read_recording(const std::string& path);

// Writes a 32-bit float WAV file.
void write_recording(const std::string& path, const recording& content);

// Noise that swells four times a second, which makes a vocoder sing; the same for the same arguments.
recording voice_of(double seconds, int rate_hz = 44100, int channels = 1);

float peak_of(const recording& content);

bool contains(const std::string& text, const std::string& part);

// A temporary folder with a voice in it.
class command_fixture : public testing::Test {
 protected:
  command_fixture() { write_recording(voice, voice_of(0.4)); }

  // Names of the files in the folder, sorted.
  std::vector<std::string> listing() const;

  // Standard output of a run that has to succeed.
  static std::string done(const arguments& words);
  // Checks that the run fails with one line of text that contains `reason`, and leaves the folder as it was.
  void expect_refusal(const arguments& words, const std::string& reason) const;
  // Renders the voice.
  recording rendered(arguments options) const;

  temporary_folder folder;
  const std::string voice = folder.path("voice.wav");
  const std::string output = folder.path("out.wav");
};
