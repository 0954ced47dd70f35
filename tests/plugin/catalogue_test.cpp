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

// Songs are saved with uuids and sound numbers mean what the engine makes of them, so none of this ever changes.
TEST_F(Catalogue, KeepsItsRows) {
  std::string rows;
  for (const menu_row_ref& row : catalogue.rows()) {
    for (const int32_t number : {row->sound_number, row->root_key, row->category_id})
      rows += std::to_string(number) + "|";
    rows += row->name + "|" + row->uuid + "\n";
  }
  for (const sound_category_ref& category : catalogue.categories()) {
    rows += category->name + "|" + std::to_string(category->id) + "\n";
    for (const menu_row_ref& sound : category->sounds) rows += sound->name + "\n";
    EXPECT_FALSE(category->activated);
  }
  EXPECT_EQ(fingerprint(rows), 0xBD39A4738C99AFEAU) << rows;
}

TEST(BuiltInPrograms, KeepTheirNamesAndSounds) {
  std::string programs;
  for (const state::program& program : built_in_programs()) programs += program.name + "|" + program.sound_uuid + "\n";
  EXPECT_EQ(fingerprint(programs), 0xD575F1C07DA3F560U) << programs;
}

TEST_F(Catalogue, FindsRowsByUuidWithoutRegardToCaseAndByPosition) {
  EXPECT_EQ(catalogue.find_row_by_uuid("QUORVANT.factory.dark_CLASSIC_Ring_mod"), 9);
  EXPECT_EQ(catalogue.find_row_by_uuid(""), 0);
  EXPECT_EQ(catalogue.find_row_by_uuid("quorvant.factory.Dark_Classic_Ring_Mo"), no_row);
  EXPECT_EQ(sound_catalogue().find_row_by_uuid(""), no_row);
  EXPECT_EQ(catalogue.category_with_id(2), nullptr);
  EXPECT_FALSE(built_in_activation_gate().passes(2));
  catalogue.append_factory_sounds();
  EXPECT_EQ(catalogue.row_at(67 + 3), catalogue.row_at(3)) << "repeated, not copied";
  EXPECT_EQ(catalogue.row_at(2 * 67), nullptr);
  EXPECT_EQ(catalogue.row_at(-1), nullptr);
}

}  // namespace
