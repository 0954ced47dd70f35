// MIT License.
#include "doors/core/midi_keys.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using key_set = std::set<int>;

class MidiKeys : public testing::Test {
 protected:
  // Sends messages of three bytes and returns the keys that are held then.
  key_set after(std::initializer_list<std::array<uint8_t, 3>> messages) {
    for (const auto& message : messages) {
      const key_set before = held();
      const bool has_changed = midi.apply(message, latch, &keys);
      EXPECT_EQ(has_changed, held() != before);
    }
    return held();
  }
  key_set held() const {
    key_set result;
    for (int key = 0; key < 128; ++key) {
      if (keys[key] != 0) result.insert(key);
    }
    return result;
  }
  void latch_by_hand(std::initializer_list<int> wanted) {
    for (const int key : wanted) keys[key] = 1;
  }

  midi_keys midi;
  bool latch = false;
  key_flags keys = {};
};

TEST_F(MidiKeys, AreHeldWhileTheirNotesLast) {
  EXPECT_EQ(after({{0x90, 60, 100}, {0x90, 64, 1}}), (key_set{24, 28}));
  EXPECT_EQ(after({{0x80, 60, 64}}), (key_set{28}));
  EXPECT_EQ(after({{0x90, 64, 0}}), key_set{}) << "a note-on without velocity ends the note";
}

TEST_F(MidiKeys, CoverThreeOctavesAndTheCAboveThem) {
  for (int note = 0; note < 128; ++note) {
    const key_set expected = note < 36 || note > 72 ? key_set{} : key_set{note == 72 ? 24 : note - 36};
    EXPECT_EQ(after({{0x90, static_cast<uint8_t>(note), 100}}), expected) << note;
    EXPECT_EQ(after({{0x80, static_cast<uint8_t>(note), 0}}), key_set{}) << note;
  }
}

TEST_F(MidiKeys, GiveThePlayedChordThePlaceOfALatchedOne) {
  latch_by_hand({12, 16, 19});
  EXPECT_EQ(after({{0x90, 57, 90}}), (key_set{21}));
  EXPECT_EQ(after({{0x90, 60, 90}}), (key_set{21, 24})) << "further notes of the chord replace nothing";
  EXPECT_EQ(after({{0x80, 57, 0}, {0x80, 60, 0}}), key_set{});
}

TEST_F(MidiKeys, ToggleWithLatch) {
  latch = true;
  latch_by_hand({0});
  EXPECT_EQ(after({{0x90, 38, 90}, {0x80, 38, 0}}), (key_set{0, 2}));
  EXPECT_EQ(after({{0x90, 38, 90}, {0x80, 38, 0}, {0x90, 36, 90}}), key_set{});
}

TEST_F(MidiKeys, StayWhenLatchComesOnWhileTheyAreHeld) {
  after({{0x90, 40, 90}, {0xB0, 64, 127}, {0x90, 41, 90}, {0x80, 41, 0}});
  latch = true;
  EXPECT_EQ(after({{0x80, 40, 0}, {0xB0, 64, 0}}), (key_set{4, 5}));
}

TEST_F(MidiKeys, AreHeldByTheirChannelsPedal) {
  EXPECT_EQ(after({{0xB0, 64, 64}, {0x90, 40, 90}, {0x80, 40, 0}}), (key_set{4}));
  EXPECT_EQ(after({{0x91, 41, 90}, {0x81, 41, 0}}), (key_set{4})) << "the pedal of another channel";
  EXPECT_EQ(after({{0x90, 40, 90}, {0xB0, 64, 63}}), (key_set{4})) << "struck again and still down";
  EXPECT_EQ(after({{0x80, 40, 0}}), key_set{});
  EXPECT_EQ(after({{0xB0, 64, 127}, {0x90, 42, 90}, {0x80, 42, 0}, {0xB0, 121, 0}}), key_set{})
      << "resetting the controllers lifts the pedal";
}

TEST_F(MidiKeys, LastUntilTheLastChannelLetsGo) {
  EXPECT_EQ(after({{0x90, 40, 90}, {0x9F, 40, 90}, {0x80, 40, 0}}), (key_set{4}));
  EXPECT_EQ(after({{0x80, 40, 0}}), (key_set{4})) << "a second end of the same note";
  EXPECT_EQ(after({{0x8F, 40, 0}}), key_set{});
}

TEST_F(MidiKeys, EndWithAllNotesOffOfTheirChannel) {
  for (const uint8_t controller : std::array<uint8_t, 4>{120, 123, 124, 127}) {
    EXPECT_EQ(after({{0xB0, 64, 127}, {0x90, 40, 90}, {0x90, 41, 90}, {0x80, 41, 0}, {0x91, 50, 90}}),
              (key_set{4, 5, 14}));
    EXPECT_EQ(after({{0xB0, controller, 0}}), (key_set{14})) << int{controller};
    EXPECT_EQ(after({{0xB1, controller, 0}}), key_set{});
  }
  EXPECT_EQ(after({{0x90, 40, 90}, {0xB0, 122, 0}}), (key_set{4})) << "local control means a keyboard";
}

TEST_F(MidiKeys, LatchedByHandStayWhenAHostStops) {
  latch_by_hand({12, 16});
  EXPECT_EQ(after({{0xB0, 64, 0}, {0xB0, 120, 0}, {0xB0, 121, 0}, {0xB0, 123, 0}}), (key_set{12, 16}));
  latch = true;
  EXPECT_EQ(after({{0x90, 40, 90}, {0xB0, 120, 0}, {0xB0, 123, 0}}), (key_set{4, 12, 16}));
}

TEST_F(MidiKeys, PlayOnThroughAChangeOfProgram) {
  EXPECT_FALSE(midi.reassert(&keys));
  after({{0x90, 40, 90}, {0xB0, 64, 127}, {0x90, 41, 90}, {0x80, 41, 0}});
  for (uint8_t& flag : keys) flag = 0;
  latch_by_hand({30});
  EXPECT_TRUE(midi.reassert(&keys));
  EXPECT_EQ(held(), (key_set{4, 5}));
  EXPECT_EQ(after({{0x80, 40, 0}, {0xB0, 64, 0}}), key_set{});
}

TEST_F(MidiKeys, OutlastASuspension) {
  after({{0x90, 40, 90}, {0x90, 41, 90}});
  midi.suspend();
  EXPECT_EQ(after({{0x80, 40, 0}}), (key_set{5})) << "released after it";
  EXPECT_EQ(after({{0x90, 50, 90}}), (key_set{14})) << "released during it, and the next chord clears it away";
  EXPECT_EQ(after({{0x80, 50, 0}, {0x91, 50, 90}}), (key_set{14}));
  midi.suspend();
  for (uint8_t& flag : keys) flag = 0;
  EXPECT_EQ(after({{0x90, 50, 90}, {0x80, 50, 0}}), key_set{}) << "cleared by hand after it";
}

TEST_F(MidiKeys, IgnoreOtherMessagesAndThoseCutShort) {
  after({{0x90, 40, 90}});
  EXPECT_EQ(after({{0xA0, 41, 90}, {0xC0, 42, 90}, {0xD0, 43, 90}, {0xE0, 44, 90}, {0xF8, 45, 90}, {45, 45, 90}}),
            (key_set{4}));
  const uint8_t cut[] = {0x80, 40};
  EXPECT_FALSE(midi.apply(cut, false, &keys));
  EXPECT_FALSE(midi.apply({}, false, &keys));
  EXPECT_EQ(held(), (key_set{4}));
}

}  // namespace
