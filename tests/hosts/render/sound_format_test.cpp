// MIT License. Tests of the formats that kesrel-render writes.
#include "hosts/render/sound_format.h"

#include <gmock/gmock.h>
#include <sndfile.h>

#include <cmath>

#include "tests/hosts/command.h"

namespace {

struct tags {
  std::string title;
  std::string comment;
};

tags tags_of(const std::string& path) {
  SF_INFO info{};
  SNDFILE* const file = sf_open(path.c_str(), SFM_READ, &info);
  if (file == nullptr) return {path, "is no sound file"};
  const auto text = [file](int kind) {
    const char* const found = sf_get_string(file, kind);
    return std::string(found != nullptr ? found : "none");
  };
  const tags result{text(SF_STR_TITLE), text(SF_STR_COMMENT)};
  sf_close(file);
  return result;
}

struct expectation {
  std::string ending;
  int format;  // libsndfile's
  int rate_hz;
};

using SoundFormat = command_fixture;

}  // namespace

TEST_F(SoundFormat, IsThatOfTheEndingAtARateThatItHas) {
  constexpr int wav = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
  constexpr int flac = SF_FORMAT_FLAC | SF_FORMAT_PCM_24;
  constexpr int vorbis = SF_FORMAT_OGG | SF_FORMAT_VORBIS;
  constexpr int opus = SF_FORMAT_OGG | SF_FORMAT_OPUS;
  const std::pair<int, std::vector<expectation>> voices[] = {
      {2000, {{"wav", wav, 2000}, {"flac", flac, 2000}, {"ogg", vorbis, 2000}, {"opus", opus, 8000}}},
      {11025, {{"wav", wav, 11025}, {"flac", flac, 11025}, {"ogg", vorbis, 11025}, {"opus", opus, 12000}}},
      {44100, {{"WAV", wav, 44100}, {"Flac", flac, 44100}, {"OGG", vorbis, 44100}, {"Opus", opus, 48000}}},
      {96001, {{"wav", wav, 96001}, {"flac", flac, 96010}, {"ogg", vorbis, 96001}, {"opus", opus, 48000}}},
      {768000, {{"wav", wav, 768000}, {"flac", flac, 655350}, {"ogg", vorbis, 192000}, {"opus", opus, 48000}}},
  };
  for (const auto& [rate, expectations] : voices) {
    write_recording(voice, voice_of(0.1, rate));
    for (const auto& [ending, format, rate_of_file] : expectations) {
      const std::string file = folder.path("out." + ending);
      done({voice, file, "--compensate"});
      const auto content = read_recording(file);
      EXPECT_EQ(content.format, format) << file;
      EXPECT_EQ(content.channels, 2);
      EXPECT_EQ(content.rate_hz, rate_of_file) << file << " of " << rate;
      EXPECT_NEAR(static_cast<double>(content.frames()) / rate_of_file, 0.1, 1.0 / rate) << file;
      EXPECT_GT(peak_of(content), 0.001F);
    }
  }
}

TEST_F(SoundFormat, IsRefusedBeforeAnythingIsWritten) {
  expect_refusal({voice, folder.path("out.mp3")}, "has the ending .mp3: its format is one of wav, flac, ogg, opus");
  expect_refusal({voice, folder.path("out")}, "has no ending");
  expect_refusal({voice, output, "--format", "mp3"}, "'mp3' is no format");
  for (const char* const name : {"out.flac", "out.ogg", "out.opus"}) {
    expect_refusal({voice, folder.path(name), "--float"}, "float samples are for wav files");
  }
  done({voice, folder.path("out.raw"), "--format", "FLAC"});
  EXPECT_EQ(read_recording(folder.path("out.raw")).format, SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
}

TEST_F(SoundFormat, CarriesTitleSoundAndKeys) {
  std::string long_song = "0:00";
  for (int i = 0; i < 20000; ++i) long_song += " Am";
  for (const std::string ending : {"wav", "flac", "ogg", "opus"}) {
    const std::string file = folder.path("out." + ending);
    done({voice, file, "--sound", "Ambient Indigo", "--keys", "C4,E4", "--reverb"});
    EXPECT_EQ(tags_of(file).title, "voice (Ambient Indigo)");
    EXPECT_EQ(tags_of(file).comment, "sound 56 'Ambient Indigo', keys C4, E4, reverb");
    done({voice, file, "--sound", "56", "--chords", "0:00 Am | 0:00.2 F"});
    EXPECT_EQ(tags_of(file).comment, "sound 56 'Ambient Indigo', chords 0:00 Am | 0:00.2 F");
    done({voice, file, "--chords", long_song});
    EXPECT_THAT(tags_of(file).comment, testing::EndsWith("...")) << "other programs read the file";
    EXPECT_GT(peak_of(read_recording(file)), 0.001F);
  }
}
