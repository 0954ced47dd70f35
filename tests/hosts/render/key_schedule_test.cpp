// MIT License.
#include "hosts/render/key_schedule.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "hosts/effect/keys.h"
#include "hosts/effect/text.h"

namespace {

using testing::HasSubstr;

constexpr int lowest_c = 36;

std::string text_of(const key_schedule& schedule) {
  std::string text;
  for (const key_change& change : schedule) {
    std::vector<std::string> notes;
    for (const int key : change.keys) notes.push_back(name_of_note(lowest_c + key));
    char time[32];
    std::snprintf(time, sizeof time, "%.4g: ", change.seconds);
    text += time + joined(notes) + "\n";
  }
  return text;
}

std::string chords(const std::string& text, chord_timing timing = {}, double voice_seconds = 10) {
  return text_of(schedule_of_chords(text, timing, voice_seconds, lowest_c));
}

std::string complaint(const std::string& text, chord_timing timing = {}) {
  try {
    return "understood as " + chords(text, timing);
  } catch (const failure& error) {
    return error.what();
  }
}

TEST(ChordSchedule, SharesTheTimeOfAPartAmongItsChords) {
  EXPECT_EQ(chords("0:00 Am F | 0:04 C G"),
            "0: A3, C4, E4\n"
            "2: F3, A3, C4\n"
            "4: C3, E3, G3\n"
            "7: G3, B3, D4\n");
  EXPECT_EQ(chords("1.5 C - % | 0:01:00.25 C4,12"), "1.5: C3, E3, G3\n21.08: \n60.25: C3, C4\n");
}

TEST(ChordSchedule, RepeatsBarsUntilTheVoiceEnds) {
  EXPECT_EQ(chords("| C | F G |", {120.0, 4}, 5.5),
            "0: C3, E3, G3\n"
            "2: F3, A3, C4\n"
            "3: G3, B3, D4\n"
            "4: C3, E3, G3\n");
  EXPECT_EQ(chords("C | % | n.c.", {90.0, 3}, 5), "0: C3, E3, G3\n4: \n");
}

TEST(ChordSchedule, SaysWhatItDoesNotUnderstand) {
  EXPECT_THAT(complaint("Am | F"), HasSubstr("'Am' doesn't begin with its time, such as 0:04; for bars give --bpm"));
  EXPECT_THAT(complaint("0:00 Am | 0:00 F"), HasSubstr("'0:00 F' comes no later than the part before it"));
  EXPECT_THAT(complaint("0:00 Am | 0:04"), HasSubstr("'0:04' has no chord after its time"));
  EXPECT_THAT(complaint("0:61 Am"), HasSubstr("doesn't begin with its time"));
  EXPECT_THAT(complaint("1.5:00 Am"), HasSubstr("doesn't begin with its time"));
  EXPECT_THAT(complaint("-1 Am"), HasSubstr("doesn't begin with its time"));
  for (const char* const time : {"nan", "inf", "infinity:00", "0:nan", "1e3", "0x10", "+1", "0:", ":30", "1.5.5"}) {
    EXPECT_THAT(complaint(std::string(time) + " Am"), HasSubstr("doesn't begin with its time")) << time;
  }
  EXPECT_THAT(complaint("0:00 Am | " + std::string(308, '9') + ":00 F"), HasSubstr("doesn't begin with its time"));
  EXPECT_LT(complaint("0:00 " + std::string(100000, 'A')).size(), 200U);
  EXPECT_THAT(complaint("0:00 Amx"), HasSubstr("'Amx' is no chord"));
  EXPECT_THAT(complaint("0:00 C9,E4,G4"), HasSubstr("outside this sound's keyboard"));
  EXPECT_THAT(complaint("C | | F", {96.0, 4}), HasSubstr("a bar has no chord"));
  EXPECT_THAT(complaint("0:00 Am", {96.0, 4}), HasSubstr("'0:00 Am' has a time, but --bpm counts bars"));
}

song_event note(double seconds, int number, int velocity, int channel = 0) {
  return {seconds, static_cast<uint8_t>(0x90 | channel), static_cast<uint8_t>(number), static_cast<uint8_t>(velocity)};
}

song_event controller(double seconds, int number, int value) {
  return {seconds, 0xb0, static_cast<uint8_t>(number), static_cast<uint8_t>(value)};
}

TEST(SongSchedule, HoldsNotesAndFoldsThemIntoTheKeyboard) {
  const auto schedule = schedule_of_song({{note(0, 48, 90),
                                           note(0, 52, 90),
                                           note(1, 48, 0),
                                           {1.0, 0x80, 52, 0},
                                           note(1, 100, 90),
                                           note(1, 24, 90),
                                           note(2, 100, 0),
                                           note(2, 24, 0),
                                           note(2, 60, 90, 9)},
                                          3},
                                         lowest_c);
  EXPECT_EQ(text_of(schedule.changes), "0: C3, E3\n1: C2, E4\n2: \n");
  EXPECT_EQ(schedule.notes, 4);
  EXPECT_EQ(schedule.folded, 2);
}

// Two notes that are one key hold it until both have ended; a chord that is struck again at once goes on.
TEST(SongSchedule, KeepsAKeyThatANoteStillHolds) {
  EXPECT_EQ(
      text_of(
          schedule_of_song({{note(0, 40, 90), note(0, 16, 90), note(1, 40, 0), note(2, 16, 0)}, 3}, lowest_c).changes),
      "0: E2\n2: \n");
  EXPECT_EQ(
      text_of(
          schedule_of_song({{note(0, 40, 90), note(1, 40, 0), note(1, 40, 90), note(2, 40, 0)}, 3}, lowest_c).changes),
      "0: E2\n2: \n");
  EXPECT_EQ(text_of(schedule_of_song(
                        {{note(0, 40, 90, 0), note(0, 40, 90, 1), note(1, 40, 0, 0), note(2, 40, 0, 1)}, 3}, lowest_c)
                        .changes),
            "0: E2\n2: \n");
}

TEST(SongSchedule, FollowsThePedalAndTheEndOfAllNotes) {
  const std::vector<song_event> pedalled = {controller(0, 64, 127), note(1, 40, 90),      note(2, 40, 0),
                                            note(3, 45, 90),        controller(4, 64, 0), note(5, 45, 0)};
  EXPECT_EQ(text_of(schedule_of_song({pedalled, 6}, lowest_c).changes), "1: E2\n3: E2, A2\n4: A2\n5: \n");
  for (const int ending : {120, 123, 127}) {
    EXPECT_EQ(text_of(schedule_of_song({{note(1, 40, 90), controller(2, ending, 0)}, 6}, lowest_c).changes),
              "1: E2\n2: \n");
  }
}

TEST(SongSchedule, HoldsNoMoreThanTheSynthesizer) {
  midi_song song;
  for (int key = 0; key < 36; ++key) song.events.push_back(note(0, 36 + key, 90));
  const auto schedule = schedule_of_song(song, lowest_c);
  ASSERT_EQ(schedule.changes.size(), 1U);
  EXPECT_EQ(schedule.changes[0].keys.size(), 32U);
  EXPECT_EQ(schedule.left_out, 4);
}

}  // namespace
