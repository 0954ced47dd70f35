// MIT License. Tests of the key update.
#include "plugin/key_update.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <initializer_list>

#include "plugin/catalogue.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

sounding_keys sounding(std::initializer_list<size_t> keys, int32_t base) {
  sounding_keys made;
  for (const size_t key : keys) made.held[key] = 1;
  made.base = base;
  return made;
}

// Moves `keys` to the held keys of `to` at its base.
note_changes move(sounding_keys* keys, const sounding_keys& to) {
  return update_keys(to.held, to.base, keys);
}

TEST(KeyUpdate, StartsAndEndsNotesInAscendingOrder) {
  sounding_keys keys;
  const note_changes pressed = move(&keys, sounding({35, 12, 0}, 36));
  EXPECT_THAT(pressed.ended(), IsEmpty());
  EXPECT_THAT(pressed.begun(), ElementsAre(36, 48, 71));

  const note_changes changed = move(&keys, sounding({12, 13}, 36));
  EXPECT_THAT(changed.ended(), ElementsAre(36, 71));
  EXPECT_THAT(changed.begun(), ElementsAre(49));
}

TEST(KeyUpdate, KeepsANoteThatSoundsBeforeAndAfterAMove) {
  sounding_keys up = sounding({0, 12}, 36);
  const note_changes raised = move(&up, sounding({0, 12}, 48));
  EXPECT_THAT(raised.ended(), ElementsAre(36));
  EXPECT_THAT(raised.begun(), ElementsAre(60));

  const note_changes lowered = move(&up, sounding({0, 12}, 36));
  EXPECT_THAT(lowered.ended(), ElementsAre(60));
  EXPECT_THAT(lowered.begun(), ElementsAre(36));
}

TEST(KeyUpdate, SharesNothingBeyondTheKeyboard) {
  key_flags all_keys;
  std::ranges::fill(all_keys, uint8_t{0xFF});
  sounding_keys keys;
  EXPECT_EQ(update_keys(all_keys, 36, &keys).on_count, key_count);
  EXPECT_EQ(keys.held[127], 0xFF) << "flags beyond the keyboard are copied, too";

  const note_changes far = update_keys(all_keys, 72, &keys);
  EXPECT_EQ(far.off_count, key_count);
  EXPECT_EQ(far.on_count, key_count);

  const note_changes near = update_keys(all_keys, 60, &keys);
  EXPECT_THAT(near.ended(), ElementsAre(96, 97, 98, 99, 100, 101, 102, 103, 104, 105, 106, 107));
  EXPECT_THAT(near.begun(), ElementsAre(60, 61, 62, 63, 64, 65, 66, 67, 68, 69, 70, 71));
}

TEST(KeyUpdate, TakesTheBaseFromTheSound) {
  const menu_row sound{.uuid = "", .name = "", .category_id = 1, .sound_number = 56, .root_key = 60};
  EXPECT_EQ(key_base_for(&sound, false), 60);
  EXPECT_EQ(key_base_for(&sound, true), 72);
  EXPECT_EQ(key_base_for(nullptr, true), 36);
}

}  // namespace
