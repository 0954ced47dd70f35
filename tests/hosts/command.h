// MIT License. Words for tests that run kesrel-render as a user does.
#pragma once

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

// A folder that is made for one test and vanishes with it.
class scratch_folder {
 public:
  scratch_folder();
  ~scratch_folder();
  scratch_folder(const scratch_folder&) = delete;
  scratch_folder& operator=(const scratch_folder&) = delete;

  std::string file(const std::string& name) const { return (path_ / name).string(); }
  // Names of the files in it, sorted.
  std::vector<std::string> listing() const;

 private:
  std::filesystem::path path_;
};

struct outcome {
  int status;         // exit status, or -n for an end by signal n
  std::string out;    // standard output
  std::string error;  // standard error
};

using arguments = std::vector<std::string>;

// Runs the program to its end. Its standard output goes to the file `out` when that is named, and is empty then.
outcome run(const arguments& words, const std::string& out = {});

// While it lives, programs that are run cannot write more than `bytes` to any file.
class file_size_limit {
 public:
  explicit file_size_limit(rlim_t bytes);
  ~file_size_limit();
  file_size_limit(const file_size_limit&) = delete;
  file_size_limit& operator=(const file_size_limit&) = delete;

 private:
  rlimit former_{};
};

// Starts the program and doesn't wait.
pid_t start(const arguments& words);

// The exit status of a started program, or -n for an end by signal n.
int status_of(pid_t process);

std::string content_of(const std::string& path);
void write_file(const std::string& path, const std::string& content);

// Samples of a sound file, channels in turn.
struct recording {
  int rate_hz = 44100;
  int channels = 1;
  int format = 0;  // as libsndfile has it
  std::vector<float> samples;

  std::size_t frames() const { return samples.size() / static_cast<std::size_t>(channels); }
};

recording read_recording(const std::string& path);

// Writes a 32-bit float WAV file.
void write_recording(const std::string& path, const recording& content);

// Noise with a slow beat, near enough to a voice for a vocoder to sing with; the same for the same arguments.
recording voice_of(double seconds, int rate_hz = 44100, int channels = 1);

bool speaks_of(const std::string& text, const std::string& part);

// One voice in a folder of its own; each test looks at what else is there afterwards.
class command_fixture : public testing::Test {
 protected:
  command_fixture() { write_recording(voice, voice_of(0.4)); }

  // Standard output of a run that has to succeed.
  static std::string done(const arguments& words);
  // The text of a run that has to fail, after checking that it was one line and left nothing.
  std::string refusal(const arguments& words) const;
  // What comes out of the voice.
  recording rendered(arguments options) const;

  scratch_folder folder;
  const std::string voice = folder.file("voice.wav");
  const std::string output = folder.file("out.wav");
};
