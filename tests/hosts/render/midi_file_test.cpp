// MIT License.
#include "hosts/render/midi_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "hosts/effect/text.h"
#include "tests/hosts/render/midi_bytes.h"

namespace {

using namespace std::string_literals;
using testing::HasSubstr;

std::string text_of(const midi_song& song) {
  std::string text;
  for (const song_event& event : song.events) {
    char line[64];
    std::snprintf(line, sizeof line, "%.4f %02x %d %d\n", event.seconds, unsigned{event.status}, int{event.first},
                  int{event.second});
    text += line;
  }
  return text;
}

std::string complaint(const std::string& bytes) {
  try {
    parse_midi("it", bytes);
    return "";
  } catch (const failure& error) {
    return error.what();
  }
}

TEST(MidiFile, ReadsRunningStatusAndStepsOverWhatIsNoChannelMessage) {
  const std::string track =
      "\x00\x90\x3c\x64"                // note 60
      "\x60\x40\x64"                    // 64, a beat later, by running status
      "\x00\xf0\x03\x01\x02\xf7"        // system exclusive
      "\x00\xff\x01\x02hi"              // a text
      "\x81\x40\x3c\x00"                // note 60 off, two beats later, the status still running
      "\x00\xc0\x05\x00\xe0\x01\x02"s;  // a program, a pitch bend
  EXPECT_EQ(text_of(parse_midi("it", file_of(0, 96, {track + end_mark + "rest"}))),
            "0.0000 90 60 100\n"
            "0.5000 90 64 100\n"
            "1.5000 90 60 0\n"
            "1.5000 c0 5 0\n"
            "1.5000 e0 1 2\n");
}

TEST(MidiFile, FollowsTheTempoMapAcrossTracks) {
  // 60 beats a minute from the second beat on, 240 from the third.
  const std::string tempos = "\x60\xff\x51\x03\x0f\x42\x40\x60\xff\x51\x03\x03\xd0\x90"s + end_mark;
  const std::string low = "\x00\x90\x30\x40\x82\x20\x80\x30\x40"s + end_mark;   // 0 to 3 beats
  const std::string high = "\x81\x10\x91\x40\x40\x60\x81\x40\x40"s + end_mark;  // 1.5 to 2.5 beats
  const midi_song song = parse_midi("it", file_of(1, 96, {tempos, low, high}));
  EXPECT_EQ(text_of(song),
            "0.0000 90 48 64\n"
            "1.0000 91 64 64\n"
            "1.6250 81 64 64\n"
            "1.7500 80 48 64\n");
  EXPECT_DOUBLE_EQ(song.seconds, 1.75);
}

TEST(MidiFile, ReadsTimeCode) {
  const std::string track = "\x83\x74\x90\x3c\x40"s;  // after 500 ticks; no end mark
  EXPECT_DOUBLE_EQ(parse_midi("it", file_of(0, 0xe728, {track})).events.at(0).seconds, 0.5);  // 25 times 40
  EXPECT_DOUBLE_EQ(parse_midi("it", file_of(0, 0xe364, {track})).events.at(0).seconds, 5 * 1.001 / 30);
}

TEST(MidiFile, IsRefusedWithTheReasonWhenItIsDamaged) {
  const std::string note = "\x00\x90\x3c\x40"s;
  EXPECT_EQ(complaint("RIFF"), "it is no MIDI file: it doesn't begin with MThd");
  EXPECT_THAT(complaint(file_of(2, 96, {note})), HasSubstr("of format 2"));
  EXPECT_THAT(complaint(file_of(0, 0, {note})), HasSubstr("beats of no ticks"));
  EXPECT_THAT(complaint(file_of(0, 0xe700, {note})), HasSubstr("impossible time code"));
  EXPECT_THAT(complaint(file_of(0, 0x8028, {note})), HasSubstr("impossible time code"));
  EXPECT_THAT(complaint(file_of(0, 96, {"\x00\x3c\x40"s})), HasSubstr("data before any status"));
  EXPECT_THAT(complaint(file_of(0, 96, {"\x00\x90\x3c\x90"s})), HasSubstr("a status where data are due"));
  EXPECT_THAT(complaint(file_of(0, 96, {"\x00\xf8"s})), HasSubstr("a system message"));
  EXPECT_THAT(complaint(file_of(0, 96, {"\xff\xff\xff\xff\x7f"s})), HasSubstr("more than four bytes"));
  EXPECT_THAT(complaint(file_of(0, 96, {"\x00\xff\x51\x02\x01\x01"s})), HasSubstr("a tempo that isn't three bytes"));
  const std::string whole = file_of(1, 96, {note + end_mark, note + end_mark});
  EXPECT_EQ(complaint(whole), "");
  EXPECT_EQ(complaint(whole.substr(0, whole.size() - 16)), "it is damaged: it ends after 1 of 2 tracks (byte 30)");
  for (size_t size = 4; size < whole.size(); ++size) EXPECT_NE(complaint(whole.substr(0, size)), "") << size;
}

TEST(MidiFile, SurvivesRandomDamage) {
  const std::string whole =
      file_of(1, 96, {"\x00\x90\x3c\x40\x60\x3c\x00\x00\xff\x51\x03\x0f\x42\x40"s + end_mark, "\x00\xb0\x40\x7f"s});
  std::minstd_rand random(1);
  for (int turn = 0; turn < 20000; ++turn) {
    std::string damaged = whole;
    for (int i = 0; i < 3; ++i) damaged[random() % damaged.size()] = static_cast<char>(random());
    complaint(damaged);
  }
}

}  // namespace
