// MIT License.
#include "engine/notes.h"

#include <gtest/gtest.h>

#include "engine/voco_state.h"
#include "engine/voices.h"
#include "tests/engine/engine_words.h"

namespace {

class Notes : public testing::Test {
 protected:
  int32_t voice(int32_t note) const { return state.synth.voices[note].state; }
  int slots_in_use() const {
    return static_cast<int>(std::count_if(std::begin(state.synth.note_slots), std::end(state.synth.note_slots),
                                          [](int32_t slot) { return slot >= lowest_note; }));
  }
  void play(int samples) {
    for (int i = 0; i < samples; ++i) wsyn_next_sample(&state.synth);
  }

  std::unique_ptr<voco_state> owner = committed(plain_sound(2.0F));
  voco_state& state = *owner;
  wsyn_state* const synth = &state.synth;
  note_list* const mirror = &state.note_mirror;
};

TEST_F(Notes, SoundFrom27To108Only) {
  for (const int32_t note : {26, 109, -1, 128, INT32_MAX, INT32_MIN}) notes_on(note, synth, mirror);
  EXPECT_EQ(slots_in_use(), 0);
  notes_on(27, synth, mirror);
  notes_on(108, synth, mirror);
  EXPECT_EQ(voice(27), voice_held);
  EXPECT_EQ(voice(108), voice_held);
  EXPECT_EQ(state.note_mirror[0], 27.0F);
  EXPECT_EQ(state.note_mirror[1], 108.0F);
}

TEST_F(Notes, RetriggerInTheirSlotAndDropTheThirtyThird) {
  for (int32_t note = 30; note < 63; ++note) notes_on(note, synth, mirror);
  EXPECT_EQ(slots_in_use(), 32);
  EXPECT_EQ(voice(62), voice_idle);
  play(300);
  const voice_record before = state.synth.voices[60];
  notes_off(60, synth, mirror);
  notes_on(60, synth, mirror);
  notes_on(60, synth, mirror);
  EXPECT_EQ(slots_in_use(), 32);
  EXPECT_EQ(state.synth.voices[60].level, before.level) << "it goes on from its level";
  EXPECT_EQ(state.synth.voices[60].phase1, before.phase1);
  notes_off(62, synth, mirror);
  notes_off(40, synth, mirror);
  notes_on(62, synth, mirror);
  EXPECT_EQ(voice(62), voice_held);
}

TEST_F(Notes, AreKeptByThePedal) {
  notes_on(60, synth, mirror);
  notes_on(64, synth, mirror);
  notes_set_sustain(1, synth, mirror);
  notes_off(60, synth, mirror);
  EXPECT_EQ(voice(60), voice_sustained);
  EXPECT_EQ(slots_in_use(), 2);
  notes_set_sustain(1, synth, mirror);
  EXPECT_EQ(voice(60), voice_sustained);
  notes_set_sustain(0, synth, mirror);
  EXPECT_EQ(voice(60), voice_releasing);
  EXPECT_EQ(voice(64), voice_held);
  EXPECT_EQ(slots_in_use(), 1);
}

TEST_F(Notes, CanBeSetAsAList) {
  notes_on(40, synth, mirror);
  notes_on(41, synth, mirror);
  const std::array<float, 4> list = {10.0F, 72.9F, 26.0F, 200.0F};
  notes_set_list(list.data(), sizeof(list), synth, mirror);
  EXPECT_EQ(voice(40), voice_releasing);
  EXPECT_EQ(voice(72), voice_held);
  EXPECT_EQ(state.synth.note_slots[0], 40);  // entries outside the range leave their slot
  EXPECT_EQ(state.synth.note_slots[1], 72);

  const std::vector<float> too_long(100, 60.0F);
  notes_set_list(too_long.data(), 400, synth, mirror);
  EXPECT_EQ(voice(60), voice_held);
  EXPECT_EQ(voice(72), voice_releasing);
}

TEST_F(Notes, AllOffReleasesAndCentresTheBend) {
  notes_on(60, synth, mirror);
  play(10);
  state.synth.bend = 1.5F;
  notes_all_off(synth, mirror);
  EXPECT_EQ(voice(60), voice_releasing);
  EXPECT_EQ(state.synth.bend, 1.0F);
  // The slots keep their numbers while the mirror is empty until a note refreshes it, which one out of range doesn't.
  for (const int32_t note : {26, 109}) {
    notes_on(note, synth, mirror);
    notes_off(note, synth, mirror);
    EXPECT_EQ(state.note_mirror[0], 0.0F) << note;
  }
  notes_off(61, synth, mirror);
  EXPECT_EQ(state.note_mirror[0], 60.0F);
  notes_on(60, synth, mirror);
  EXPECT_EQ(voice(60), voice_held);
  EXPECT_EQ(slots_in_use(), 1);
}

TEST_F(Notes, KeepTheBitsOfSoundingVoicesUpToDate) {
  uint32_t seed = 5;
  for (int i = 0; i < 20000; ++i) {
    seed = seed * 1664525U + 1013904223U;
    const auto note = static_cast<int32_t>(20 + (seed >> 24) % 95);
    seed & 0x100 ? notes_on(note, synth, mirror) : notes_off(note, synth, mirror);
    if (i % 500 == 0) notes_set_sustain(i / 500 % 2, synth, mirror);
    play(3);
  }
  for (int32_t note = 0; note < 128; ++note) {
    EXPECT_EQ(voice(note) != voice_idle, (state.synth.sounding[note / 64] >> (note % 64) & 1) != 0) << note;
  }
}

}  // namespace
