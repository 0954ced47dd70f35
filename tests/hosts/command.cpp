// MIT License. Words for tests that run kesrel-render, or another host, as a user does.
#include "tests/hosts/command.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "tests/words/signals.h"

namespace fs = std::filesystem;

recording read_recording(const std::string& path) {
  SF_INFO info{};
  SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
  EXPECT_NE(file, nullptr) << path;
  recording content{info.samplerate, info.channels, info.format, {}};
  content.samples.resize(static_cast<std::size_t>(info.frames * info.channels));
  EXPECT_EQ(sf_readf_float(file, content.samples.data(), info.frames), info.frames);
  sf_close(file);
  return content;
}

void write_recording(const std::string& path, const recording& content) {
  SF_INFO info{};
  info.samplerate = content.rate_hz;
  info.channels = content.channels;
  info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
  SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
  ASSERT_NE(file, nullptr) << path;
  sf_writef_float(file, content.samples.data(), static_cast<sf_count_t>(content.frames()));
  sf_close(file);
}

recording voice_of(double seconds, int rate_hz, int channels) {
  recording voice{rate_hz, channels, 0, {}};
  double time = 0.0;
  for (const float hiss : noise(static_cast<std::size_t>(seconds * rate_hz), 0.25F)) {
    const auto beat = static_cast<float>(0.5 - 0.5 * std::cos(2.0 * 3.14159265 * 4.0 * time++ / rate_hz));
    voice.samples.insert(voice.samples.end(), static_cast<std::size_t>(channels), beat * hiss);
  }
  return voice;
}

float peak_of(const recording& content) {
  float peak = 0.0F;
  for (const float sample : content.samples) peak = std::max(peak, std::abs(sample));
  return peak;
}

bool contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

std::vector<std::string> command_fixture::listing() const {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder.path())) names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

std::string command_fixture::done(const arguments& words) {
  const auto result = run(words);
  EXPECT_EQ(result.status, 0) << result.error;
  EXPECT_EQ(result.error, "") << "no progress bar in a pipe";
  return result.out;
}

void command_fixture::expect_refusal(const arguments& words, const std::string& reason) const {
  const auto before = listing();
  const auto result = run(words);
  EXPECT_EQ(result.status, 2);
  EXPECT_EQ(result.out, "");
  EXPECT_TRUE(contains(result.error, reason)) << result.error << "has no \"" << reason << '"';
  EXPECT_EQ(result.error.find('\n'), result.error.size() - 1) << result.error;
  EXPECT_EQ(listing(), before);
}

recording command_fixture::rendered(arguments options) const {
  options.insert(options.begin(), {voice, output});
  done(options);
  return read_recording(output);
}
