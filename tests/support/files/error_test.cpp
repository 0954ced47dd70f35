// MIT License. Tests of the errors of files.
#include "support/files/error.h"

#include "tests/support/files/test_folder.h"

namespace {

TEST(FileErrors, ShowPathNameAndNumberUnlessEmpty) {
  EXPECT_STREQ(files::error::file("message", "", "").what(), "message");
  EXPECT_STREQ(files::error::file("message", "", "n").what(), "message\nfile/folder name: \"n\"");
  EXPECT_STREQ(files::error::cannot_open_file("message", "/p/n", "n").what(),
               "message\nfull path: \"/p/n\"\nfile/folder name: \"n\"");
  EXPECT_STREQ(files::error::file_not_found("message", "/p", "").what(), "message\nfull path: \"/p\"");
  EXPECT_STREQ(files::error::duplicate_name("message", "/p", "", 5).what(), "message\nfull path: \"/p\"\nerror id: 5");
}

TEST(FileErrors, KeepPathNameAndNumberInSubclasses) {
  try {
    throw files::error::folder_not_found("message", "/p/n", "n", -3);
  } catch (const err::exception& caught) {
    const auto& error = dynamic_cast<const files::error::file_path&>(caught);
    EXPECT_EQ(error.path(), "/p/n");
    EXPECT_EQ(error.name(), "n");
    EXPECT_EQ(error.error_id(), -3);
  }
}

}  // namespace
