// MIT License. Tests of the default bank: that it is made from its table, and what the table may not hold.
#include "tools/default_bank.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "plugin/program_bank.h"
#include "tests/words/files.h"

namespace {

std::string read(const std::string& name) {
  return read_file(KESREL_RESOURCES "/bank/" + name);
}

TEST(DefaultBank, IsWhatItsTableMakes) {
  const std::string made = default_bank_file(programs_of_table(read("default_bank.csv")));
  EXPECT_EQ(made.size(), 4025U);
  EXPECT_EQ(made.find("\xEF\xBB\xBF<?xml"), 3538U);
  EXPECT_EQ(made.find("List"), 3957U);
  EXPECT_TRUE(made == read("defaultbank.vstpreset")) << "run ./dev resources";
}

TEST(DefaultBank, NamesTheProgramsAsTheyAreNamedWithoutIt) {
  const auto programs = programs_of_table(read("default_bank.csv"));
  const auto built_in = built_in_programs();
  ASSERT_EQ(programs.size(), built_in.size());
  for (size_t slot = 0; slot < programs.size(); ++slot) {
    EXPECT_EQ(programs[slot].name, built_in[slot].name);
    EXPECT_EQ(programs[slot].sound_uuid, built_in[slot].sound_uuid);
  }
}

TEST(DefaultBank, RefusesRowsThatItCannotRead) {
  const std::string headings = "# comment\nname, sound, chorus, reverb, octave, keys\n";
  EXPECT_EQ(programs_of_table(headings + "a, b, on, off, on, 0 35\n").at(0).keys[35], 1);
  for (const char* const row : {"a, b, on, off, on, 36", "a, b, on, off, on, x", "a, b, yes, off, on, 1", "a, b, on"}) {
    EXPECT_THROW(programs_of_table(headings + row), std::runtime_error) << row;
  }
}

}  // namespace
