// MIT License. Tests of the sound catalogue.
#include "plugin/catalogue.h"

#include <gmock/gmock.h>

#include "plugin/activation_gate.h"
#include "plugin/program_bank.h"
#include "tests/words/hash.h"

namespace {

class Catalogue : public testing::Test {
 protected:
  Catalogue() { catalogue.append_factory_sounds(); }

  sound_catalogue catalogue;
};

TEST_F(Catalogue, ListsEachCategoryAfterItsTitle) {
  const std::vector<menu_row_ref> rows = catalogue.rows();
  ASSERT_EQ(rows.size(), 67U);
  size_t position = 0;
  for (const sound_category_ref& category : catalogue.categories()) {
    EXPECT_FALSE(category->activated);
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

// Songs are saved with uuids and sound numbers mean what the engine makes of them, so none of this ever changes.
TEST_F(Catalogue, KeepsItsSounds) {
  std::string sounds;
  for (const sound_category_ref& category : catalogue.categories()) {
    for (const menu_row_ref& row : category->sounds) {
      sounds += std::to_string(row->sound_number) + "|" + std::to_string(row->root_key) + "|" +
                std::to_string(row->category_id) + "|" + category->name + "|" + row->name + "|" + row->uuid + "\n";
    }
  }
  EXPECT_EQ(fingerprint(sounds), 0xE2C62B6B82F9D2E2U) << sounds;
  EXPECT_EQ(catalogue.row_at(9)->uuid, "quorvant.factory.Dark_Classic_Ring_Mod") << "without its name's hyphen";
  EXPECT_EQ(catalogue.row_at(65)->root_key, 60);
}

TEST(BuiltInActivationGate, PassesTheFactoryCategoriesOnly) {
  const built_in_activation_gate gate;
  for (const int32_t id : {1, 10001, 10002}) EXPECT_TRUE(gate.passes(id));
  EXPECT_FALSE(gate.passes(2));
}

TEST(BuiltInPrograms, KeepTheirNamesAndSounds) {
  std::string programs;
  for (const state::program& program : built_in_programs()) programs += program.name + "|" + program.sound_uuid + "\n";
  EXPECT_EQ(fingerprint(programs), 0xD575F1C07DA3F560U) << programs;
}

TEST_F(Catalogue, FindsRowsByUuidWithoutRegardToCase) {
  EXPECT_EQ(catalogue.find_row_by_uuid("QUORVANT.factory.dark_CLASSIC_Ring_mod"), 9);
  EXPECT_EQ(catalogue.find_row_by_uuid(""), 0);
  EXPECT_EQ(catalogue.find_row_by_uuid("quorvant.factory.Dark_Classic_Ring_Mo"), no_row);
  EXPECT_EQ(sound_catalogue().find_row_by_uuid(""), no_row);
}

TEST_F(Catalogue, RepeatsItsRowsWithoutCopyingThem) {
  for (int time = 1; time < 200; ++time) catalogue.append_factory_sounds();
  EXPECT_EQ(catalogue.rows().size(), 200U * 67U);
  EXPECT_EQ(catalogue.categories().size(), 600U);
  EXPECT_EQ(catalogue.row_at(199 * 67 + 3), catalogue.row_at(3));
  EXPECT_EQ(catalogue.row_at(200 * 67), nullptr);
  EXPECT_EQ(catalogue.row_at(-1), nullptr);
  EXPECT_EQ(catalogue.category_with_id(2), nullptr);
  EXPECT_EQ(catalogue.find_row_by_uuid("quorvant.factory.Colorized_Pulser"), 10);
}

}  // namespace
