// MIT License. Tests of reading the voice.
#include <filesystem>

#include "tests/hosts/command.h"

namespace fs = std::filesystem;

using Voice = command_fixture;

TEST_F(Voice, IsRefusedUnlessItIsAReadableSoundFile) {
  expect_refusal({folder.path("no\nne.wav"), output}, "no?ne.wav' doesn't exist");
  expect_refusal({folder.path(""), output}, "no regular file");
  write_file(folder.path("empty.wav"), "");
  expect_refusal({folder.path("empty.wav"), output}, "is empty");
  write_file(folder.path("text.wav"), "These are words, and no samples at all.\n");
  expect_refusal({folder.path("text.wav"), output}, "no sound file");
  write_recording(folder.path("header.wav"), {});
  expect_refusal({folder.path("header.wav"), output}, "no samples");
  write_recording(folder.path("three.wav"), voice_of(0.1, 44100, 3));
  expect_refusal({folder.path("three.wav"), output}, "3 channels: possible are 1 and 2");
  write_recording(folder.path("slow.wav"), voice_of(10.0, 100));
  expect_refusal({folder.path("slow.wav"), output}, "possible are 2000 to 768000");
}

TEST_F(Voice, ThatIsTruncatedGivesAWarning) {
  fs::resize_file(voice, fs::file_size(voice) - std::size_t{4410} * sizeof(float));
  const auto result = run({voice, output, "--compensate"});
  EXPECT_EQ(result.status, 0);
  EXPECT_TRUE(contains(result.error, "voice.wav' is cut short: 0.10 of its 0.40 s are missing\n")) << result.error;
  EXPECT_EQ(read_recording(output).frames(), voice_of(0.3).frames());

  auto streamed = read_file(voice);
  streamed.replace(streamed.find("data") + 4, 4, "\xFF\xFF\xFF\xFF");
  write_file(voice, streamed);
  done({voice, output});
}

TEST_F(Voice, OfAStereoFileIsWhatSoundsInIt) {
  const auto mono = rendered({"--float", "--compensate"}).samples;
  recording right_alone = voice_of(0.4, 44100, 2);
  for (std::size_t i = 0; i < right_alone.samples.size(); i += 2) right_alone.samples[i] *= 1e-4F;
  write_recording(voice, right_alone);
  const auto found = run({voice, output, "--float", "--compensate"});
  EXPECT_TRUE(contains(found.error, "voice.wav': the left channel is silent: the right one is used\n")) << found.error;
  EXPECT_TRUE(read_recording(output).samples == mono);
  EXPECT_TRUE(rendered({"--float", "--compensate", "--channel", "right"}).samples == mono);
  EXPECT_TRUE(contains(run({voice, output, "--channel", "left"}).error, "out.wav' is silent"));

  recording opposite = voice_of(0.4, 44100, 2);
  for (std::size_t i = 0; i < opposite.samples.size(); i += 2) opposite.samples[i] *= -1.0F;
  write_recording(voice, opposite);
  EXPECT_TRUE(contains(run({voice, output, "--float", "--compensate"}).error, "out.wav' is silent"));
  expect_refusal({voice, output, "--channel", "middle"}, "possible are left, right and mix, not 'middle'");
}
