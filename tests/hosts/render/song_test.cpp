// MIT License. Tests of renderings whose chords change.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

#include "tests/hosts/command.h"
#include "tests/hosts/render/midi_bytes.h"
#include "tests/words/environment.h"

namespace {

using namespace std::string_literals;
using testing::EndsWith;

// Three notes that begin and three that end, at one time. Times are in ticks as a file has them.
std::string struck(const std::string& time, const std::string& notes) {
  return time + "\x90" + notes[0] + "\x60\0"s + notes[1] + "\x60\0"s + notes[2] + "\x60";
}
std::string let_go(const std::string& time, const std::string& notes) {
  return time + "\x90" + notes[0] + "\0\0"s + notes[1] + "\0\0"s + notes[2] + "\0"s;
}

// Am, F, C and G, each for a beat of 0.75 s; the tempo is in another track.
std::string four_chords() {
  const std::string at_once = "\0"s;
  const std::string beat = "\x83\x60";  // 480
  std::string notes = struck(at_once, "EHL");
  notes += let_go(beat, "EHL") + struck(at_once, "AEH");
  notes += let_go(beat, "AEH") + struck(at_once, "<@C");
  notes += let_go(beat, "<@C") + struck(at_once, "CGJ");
  return file_of(1, 480, {"\0\xff\x51\x03\x0b\x71\xb0"s + end_mark, notes + end_mark});
}

// The largest change of the slope from sample to sample of the left channel, which a click would raise.
float roughness_of(const recording& content) {
  float largest = 0.0F;
  const std::vector<float>& x = content.samples;
  for (std::size_t i = 2; i + 4 < x.size(); i += 2) {
    largest = std::max(largest, std::abs(x[i + 2] - 2.0F * x[i] + x[i - 2]));
  }
  return largest;
}

std::size_t first_difference(const recording& one, const recording& other) {
  const auto [found, ignored] = std::mismatch(one.samples.begin(), one.samples.end(), other.samples.begin());
  return static_cast<std::size_t>(found - one.samples.begin()) / 2;
}

class Song : public command_fixture {
 protected:
  // Without the fade at the end, and in the voice's time.
  recording sung(const arguments& options) const {
    arguments words{"--float", "--compensate"};
    words.insert(words.end(), options.begin(), options.end());
    return rendered(words);
  }
};

}  // namespace

TEST_F(Song, SoundsTheSameFromTimesFromBarsAndFromAMidiFile) {
  write_recording(voice, voice_of(3.0));
  write_file(folder.path("song.mid"), four_chords());
  const auto song = sung({"--chords", "0:00 Am | 0:00.75 F | 0:01.5 C | 0:02.25 G"});
  EXPECT_TRUE(sung({"--chords", "Am F C G", "--bpm", "80"}).samples == song.samples);
  EXPECT_TRUE(sung({"--chords", "Am | F | C | G", "--bpm", "80", "--beats", "1"}).samples == song.samples);
  EXPECT_TRUE(sung({"--midi", folder.path("song.mid")}).samples == song.samples);

  // Until the first frame of 1024 samples that reaches the change, the first chord alone is heard.
  const auto first_chord = sung({"--keys", "Am"});
  EXPECT_TRUE(sung({"--chords", "0:00 Am"}).samples == first_chord.samples);
  const auto different_from = static_cast<double>(first_difference(song, first_chord));
  EXPECT_GT(different_from, 0.75 * 44100 - 1024 - 32);
  EXPECT_LT(different_from, 0.75 * 44100);

  float held = 0.0F;
  for (const char* const chord : {"Am", "F", "C", "G"}) held = std::max(held, roughness_of(sung({"--keys", chord})));
  EXPECT_LT(roughness_of(song), 1.2F * held) << "it clicks";
}

TEST_F(Song, ChangesItsKeysWithin32SamplesOfTheirTime) {
  set_variable("KESREL_ODD", "keys");
  // Each key and the time in seconds at which it is pressed. Before the first, none is.
  const std::vector<std::pair<double, int>> changes = {{0.0333, 4}, {0.1, 9}, {0.12345, 30}, {0.25, 0}, {0.2515, 17}};
  std::string chords = "0:00 -";
  for (const auto& [seconds, key] : changes) {
    chords += " | " + std::to_string(seconds) + " " + std::to_string(key) + ",35";
  }
  for (const int rate : {44100, 48000}) {
    write_recording(voice, voice_of(0.4, rate));
    for (const char* const block : {"512", "33", "1", "4096"}) {
      const auto shown = sung({"--plugin", KESREL_ODD_EFFECT, "--chords", chords, "--block", block});
      const auto key_at = [&](double seconds) {
        const auto frame = static_cast<std::size_t>(std::lround(seconds * rate));
        return static_cast<int>(std::lround(64.0F * shown.samples[2 * frame])) - 1;
      };
      // Between converted samples a step takes time.
      const double tolerance = (rate == 44100 ? 32.0 : 40.0) / 44100.0;
      int before = -1;
      for (const auto& [seconds, key] : changes) {
        EXPECT_EQ(key_at(seconds - tolerance), before) << rate << ", " << block << ", " << seconds;
        EXPECT_EQ(key_at(seconds + tolerance), key) << rate << ", " << block << ", " << seconds;
        before = key;
      }
    }
  }
  set_variable("KESREL_ODD", "");
}

// At 700001 Hz a block needs eight samples. The first change comes one after the end of a block.
TEST_F(Song, HasNoGapWhereAShortBlockWouldPrecedeAChange) {
  write_recording(voice, voice_of(0.1, 700001));
  const auto song = rendered({"--float", "--module-rate", "native", "--chords", "0 C | 0.073737038 A"});
  for (std::size_t i = 51000; i < 52000; ++i) ASSERT_NE(song.samples[2 * i], 0.0F) << i;
}

TEST_F(Song, SaysWhatOfAMidiFileItCannotPlayAsItIsWritten) {
  const std::string path = folder.path("song.mid");
  write_file(path, file_of(0, 96, {struck("\0"s, "<ld") + end_mark}));
  EXPECT_THAT(run({voice, output, "--midi", path}).error,
              EndsWith("song.mid': 2 of 3 notes lie beyond the keyboard and are played octaves away\n"));
  write_file(path, file_of(0, 96, {"\0\x99<@"s + end_mark}));
  expect_refusal({voice, output, "--midi", path}, "song.mid' has no notes");
  expect_refusal({voice, output, "--midi", folder.path("none.mid")}, "none.mid' cannot be read: No such file");
  expect_refusal({voice, output, "--midi", voice}, "is no MIDI file");
  const std::string whole = four_chords();
  for (std::size_t size = 14; size < whole.size(); size += 11) {
    write_file(path, whole.substr(0, size));
    expect_refusal({voice, output, "--midi", path}, "is damaged: it ends ");
  }
}
