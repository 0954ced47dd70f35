// MIT License. Tests of the sound catalogue.
#include "plugin/catalogue.h"

#include <gmock/gmock.h>

#include <map>
#include <set>

namespace {

using testing::ElementsAre;
using testing::Pair;

class Catalogue : public testing::Test {
 protected:
  Catalogue() { catalogue.append_factory_sounds(); }

  sound_catalogue catalogue;
};

TEST_F(Catalogue, ListsEachCategoryBehindItsTitle) {
  const std::vector<menu_row_ref> rows = catalogue.rows();
  ASSERT_EQ(rows.size(), 67U);
  size_t position = 0;
  for (const sound_category_ref& category : catalogue.categories()) {
    for (const auto& [name, number] : {std::pair(std::string("---"), -1), {category->name, -2}, {"---", -1}}) {
      const menu_row& row = *rows[position++];
      EXPECT_EQ(row.name, name);
      EXPECT_EQ(row.sound_number, number);
      EXPECT_EQ(row.uuid, "");
      EXPECT_EQ(row.category_id, category->id);
      EXPECT_EQ(row.root_key, 0);
    }
    for (const menu_row_ref& sound : category->sounds) EXPECT_EQ(rows[position++], sound);
  }
  EXPECT_EQ(position, 67U);
}

TEST_F(Catalogue, HasThreeCategoriesNoneOfThemActivated) {
  std::vector<std::pair<int32_t, size_t>> sizes;
  for (const auto& category : catalogue.categories()) {
    sizes.emplace_back(category->id, category->sounds.size());
    EXPECT_FALSE(category->activated);
    for (const auto& sound : category->sounds) EXPECT_EQ(sound->category_id, category->id);
  }
  EXPECT_THAT(sizes, ElementsAre(Pair(1, 8), Pair(10001, 25), Pair(10002, 25)));
}

TEST_F(Catalogue, CountsSoundNumbersUpByOne) {
  int32_t expected = 0;
  std::map<int32_t, int32_t> raised_roots;
  std::set<std::string> uuids;
  for (const menu_row_ref& row : catalogue.rows()) {
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

TEST_F(Catalogue, MakesUuidsFromNames) {
  const std::vector<menu_row_ref> rows = catalogue.rows();
  EXPECT_EQ(rows[3]->name, "Basic Detuned Sawtooth Vocoder");
  EXPECT_EQ(rows[3]->uuid, "quorvant.factory.Basic_Detuned_Sawtooth_Vocoder");
  EXPECT_EQ(rows[9]->name, "Dark Classic Ring-Mod");
  EXPECT_EQ(rows[9]->uuid, "quorvant.factory.Dark_Classic_Ring_Mod");
  EXPECT_EQ(rows[14]->uuid, "quorvant.electronica_hook_vocoders.Electric_1-Finger_Saw_Vocoder");
  EXPECT_EQ(rows[66]->uuid, "quorvant.deep_vocoders.Ethereal_Distant_Harmonics");
}

TEST_F(Catalogue, FindsRowsByUuidWithoutRegardToCase) {
  EXPECT_EQ(catalogue.find_row_by_uuid("QUORVANT.factory.dark_CLASSIC_Ring_mod"), 9);
  EXPECT_EQ(catalogue.find_row_by_uuid(""), 0);
  EXPECT_EQ(catalogue.find_row_by_uuid("quorvant.factory.Dark_Classic_Ring_Mo"), k_no_row);
  EXPECT_EQ(sound_catalogue().find_row_by_uuid(""), k_no_row);
}

TEST_F(Catalogue, GivesNothingOutsideItsRows) {
  EXPECT_NE(catalogue.row_at(66), nullptr);
  EXPECT_EQ(catalogue.row_at(67), nullptr);
  EXPECT_EQ(catalogue.row_at(-1), nullptr);
  EXPECT_EQ(catalogue.category_with_id(2), nullptr);
}

TEST_F(Catalogue, RepeatsItsRowsWithoutCopyingThem) {
  for (int time = 1; time < 200; ++time) catalogue.append_factory_sounds();
  EXPECT_EQ(catalogue.rows().size(), 200U * 67U);
  EXPECT_EQ(catalogue.categories().size(), 600U);
  EXPECT_EQ(catalogue.row_at(199 * 67 + 3), catalogue.row_at(3));
  EXPECT_EQ(catalogue.row_at(200 * 67), nullptr);
  EXPECT_EQ(catalogue.find_row_by_uuid("quorvant.factory.Colorized_Pulser"), 10);
}

}  // namespace
