// MIT License. Tests of the default bank: that it is made from its table, and what the table may not hold.
#include "tools/default_bank.h"

#include <gmock/gmock.h>

#include <stdexcept>

#include "tests/words/files.h"
#include "tests/words/hash.h"

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
  // Names, sounds, switches and keys of the 24 programs, as the bank was first released.
  EXPECT_EQ(fingerprint(made.substr(0, 3538)), 0x89CD0DDCEE11B870U);
}

TEST(DefaultBank, RefusesRowsThatItCannotRead) {
  const std::string headings = "# comment\nname, sound, chorus, reverb, octave, keys\n";
  EXPECT_EQ(programs_of_table(headings + "a, b, on, off, on, 0 35\n").at(0).keys[35], 1);
  for (const char* const row : {"a, b, on, off, on, 36", "a, b, on, off, on, x", "a, b, yes, off, on, 1", "a, b, on"}) {
    EXPECT_THROW(programs_of_table(headings + row), std::runtime_error) << row;
  }
}

}  // namespace
