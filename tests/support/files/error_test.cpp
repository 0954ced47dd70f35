// MIT License. Tests of the errors' texts, and of what of them reaches the log.
#include "support/files/error.h"

#include "support/logbook.h"
#include "tests/support/files/test_folder.h"

namespace {

TEST(FileErrors, ShowPathNameAndNumberWhereThereAreAny) {
  EXPECT_STREQ(files::error::file("message", "", "").what(), "message");
  EXPECT_STREQ(files::error::file("message", "", "n").what(), "message\nfile/folder name: \"n\"");
  EXPECT_STREQ(files::error::cannot_open_file("message", "/p/n", "n").what(),
               "message\nfull path: \"/p/n\"\nfile/folder name: \"n\"");
  EXPECT_STREQ(files::error::file_not_found("message", "/p", "").what(), "message\nfull path: \"/p\"");
  EXPECT_STREQ(files::error::duplicate_name("message", "/p", "", 5).what(), "message\nfull path: \"/p\"\nerror id: 5");
}

TEST(FileErrors, KeepTheirPartsThroughTheFamily) {
  try {
    throw files::error::folder_not_found("message", "/p/n", "n", -3);
  } catch (const err::exception& caught) {
    const auto& error = dynamic_cast<const files::error::file_path&>(caught);
    EXPECT_EQ(error.path(), "/p/n");
    EXPECT_EQ(error.name(), "n");
    EXPECT_EQ(error.error_id(), -3);
  }
}

std::string logged;

TEST(FileErrors, AreLoggedWithAllTheirLinesUnlikeBrokenPreconditions) {
  logged.clear();
  auto& logbook = halvern::logbook_impl::instance();
  const auto before = logbook.redirect_debugger([](const char* text) { logged += text; });
  logbook.levels = halvern::log_level_debug << 8;
  files::error::file_path("message", "/p", "n", 7);
  err::logic_error("not this");
  logbook.levels = halvern::log_levels_at_start;
  logbook.redirect_debugger(before);
  EXPECT_EQ(logged, "message\nfull path: \"/p\"\nfile/folder name: \"n\"\nerror id: 7\n");
}

}  // namespace
