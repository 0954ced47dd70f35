// MIT License. Test that the host's table of sounds agrees with the effect's.
#include <gtest/gtest.h>

#include "engine/factory_sounds.h"
#include "hosts/effect/sounds.h"
#include "plugin/catalogue.h"

TEST(Sounds, AreThoseOfTheEffect) {
  sound_catalogue catalogue;
  catalogue.append_factory_sounds();
  std::size_t position = 0;
  for (const auto& row : catalogue.rows()) {
    if (row->sound_number < 0) continue;  // a title or a separator
    ASSERT_LT(position, known_sounds().size());
    const sound& known = known_sounds()[position++];
    EXPECT_EQ(known.number, row->sound_number);
    EXPECT_EQ(known.root_key, row->root_key) << row->name;
    EXPECT_EQ(known.name, row->name);
    EXPECT_EQ(known.category, catalogue.category_with_id(row->category_id)->name) << row->name;
    EXPECT_EQ(known.uuid, row->uuid);
    EXPECT_EQ(known.has_values, !factory_sound_texts[known.number].empty()) << row->name;
  }
  EXPECT_EQ(position, known_sounds().size());
}
