// MIT License. Tests of the sound catalogue.
#include "plugin/catalogue.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

namespace {

using testing::ElementsAre;
using testing::Pair;

sound_catalogue factory_catalogue() {
  sound_catalogue catalogue;
  append_factory_sounds(&catalogue);
  return catalogue;
}

TEST(Catalogue, ListsEachCategoryBehindItsTitle) {
  const sound_catalogue catalogue = factory_catalogue();
  ASSERT_EQ(catalogue.rows.size(), 67U);
  size_t position = 0;
  for (const sound_category_ref& category : catalogue.categories) {
    for (const auto& [name, number] : {std::pair(std::string("---"), -1), {category->name, -2}, {"---", -1}}) {
      const menu_row& row = *catalogue.rows[position++];
      EXPECT_EQ(row.name, name);
      EXPECT_EQ(row.sound_number, number);
      EXPECT_EQ(row.uuid, "");
      EXPECT_EQ(row.category_id, category->id);
      EXPECT_EQ(row.root_key, 0);
    }
    for (const menu_row_ref& sound : category->sounds) EXPECT_EQ(catalogue.rows[position++], sound);
  }
  EXPECT_EQ(position, 67U);
}

TEST(Catalogue, HasThreeCategoriesNoneOfThemActivated) {
  std::vector<std::pair<int32_t, size_t>> sizes;
  for (const auto& category : factory_catalogue().categories) {
    sizes.emplace_back(category->id, category->sounds.size());
    EXPECT_FALSE(category->activated);
    for (const auto& sound : category->sounds) EXPECT_EQ(sound->category_id, category->id);
  }
  EXPECT_THAT(sizes, ElementsAre(Pair(1, 8), Pair(10001, 25), Pair(10002, 25)));
}

TEST(Catalogue, CountsSoundNumbersUpByOne) {
  int32_t expected = 0;
  std::map<int32_t, int32_t> raised_roots;
  std::set<std::string> uuids;
  for (const menu_row_ref& row : factory_catalogue().rows) {
    if (row->sound_number < 0) continue;
    EXPECT_EQ(row->sound_number, expected++);
    if (row->root_key != 36) raised_roots[row->sound_number] = row->root_key;
    uuids.insert(row->uuid);
  }
  EXPECT_EQ(expected, 58);
  EXPECT_EQ(uuids.size(), 58U);
  EXPECT_THAT(raised_roots,
              ElementsAre(Pair(27, 48), Pair(35, 48), Pair(49, 48), Pair(51, 48), Pair(54, 48), Pair(56, 60)));
}

TEST(Catalogue, MakesUuidsFromNames) {
  const sound_catalogue catalogue = factory_catalogue();
  EXPECT_EQ(catalogue.rows[3]->name, "Basic Detuned Sawtooth Vocoder");
  EXPECT_EQ(catalogue.rows[3]->uuid, "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder");
  EXPECT_EQ(catalogue.rows[9]->name, "Dark Classic Ring-Mod");
  EXPECT_EQ(catalogue.rows[9]->uuid, "quorvant.factory.Dark_Classic_Ring_Mod");
  EXPECT_EQ(catalogue.rows[14]->uuid, "quorvant.electronica_hook_vocoders.Electric_1-Finger_Saw_Vocoder");
  EXPECT_EQ(catalogue.rows[66]->uuid, "quorvant.deep_vocoders.Ethereal_Distant_Harmonics");
}

TEST(Catalogue, FindsRowsByUuidWithoutRegardToCase) {
  const std::vector<menu_row_ref> rows = factory_catalogue().rows;
  EXPECT_EQ(find_row_by_uuid(rows, "QUORVANT.factory.dark_CLASSIC_Ring_mod"), 9);
  EXPECT_EQ(find_row_by_uuid(rows, ""), 0);
  EXPECT_EQ(find_row_by_uuid(rows, "quorvant.factory.Dark_Classic_Ring_Mo"), k_no_row);
  EXPECT_EQ(find_row_by_uuid({}, ""), k_no_row);
}

TEST(Catalogue, GivesNothingOutsideItsRows) {
  const sound_catalogue catalogue = factory_catalogue();
  EXPECT_NE(row_at(catalogue, 66), nullptr);
  EXPECT_EQ(row_at(catalogue, 67), nullptr);
  EXPECT_EQ(row_at(catalogue, -1), nullptr);
  EXPECT_EQ(category_with_id(catalogue, 2), nullptr);
}

}  // namespace
