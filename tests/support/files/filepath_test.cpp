// MIT License. Tests of paths, their names and attributes.
#include "support/files/filepath.h"

#include "support/files/error.h"
#include "support/files/operations.h"
#include "tests/support/files/test_folder.h"

namespace {

using files::filepath;

const std::string separator(1, files::system::separator);

TEST(Filepath, HasTheLastComponentAsItsName) {
  const test_folder folder;
  folder.with_folder("a/b");
  EXPECT_EQ(filepath(folder.path("a/b")).name(), "b");
  const std::string with_tail = folder.path("a/b") + separator;
  EXPECT_EQ(filepath(with_tail).name(), "b");
  EXPECT_EQ(filepath(with_tail).path(), with_tail);
  EXPECT_EQ(filepath(".").name(), ".");
  EXPECT_EQ(filepath("." + separator).name(), ".");
}

TEST(Filepath, KnowsFoldersAndHiddenNamesAndRefusesWhatDoesNotExist) {
  const test_folder folder;
  EXPECT_EQ(folder.with_file("plain").flags(), filepath::exists_flag);
  EXPECT_EQ(folder.with_folder("sub").flags(), filepath::exists_flag | filepath::folder_flag);
  EXPECT_EQ(folder.with_file(".hidden").flags(), filepath::exists_flag | filepath::hidden_flag);
  EXPECT_EQ(filepath().flags(), 0U);
  const std::string missing = folder.path("missing");
  const std::string text = "GetFileAttributes failed! the file/folder doesn't exist!";
  EXPECT_EQ(thrown<files::error::file_not_found>([&] { filepath{missing}; }),
            text + path_line(missing) + name_line("missing"));
  EXPECT_EQ(thrown<files::error::file_not_found>([] { filepath{""}; }), text);
  EXPECT_EQ(thrown<files::error::file_path>([] { filepath{separator}; }),
            "its not allowed to have an empty filename!" + path_line(separator));
  EXPECT_EQ(files::error::duplicate_name("message", "/p", "", 5).what(), "message" + path_line("/p") + "\nerror id: 5");
}

TEST(Filepath, FollowsARelativePath) {
  const test_folder folder;
  folder.with_folder("a/b");
  folder.with_file("a/b/c");
  for (const char* const relative : {"a/b/c", "/a/b/c", "//a///b/c//"}) {
    const filepath found(folder.place(), relative);
    EXPECT_EQ(found.path(), folder.path("a/b/c")) << relative;
    EXPECT_EQ(found.name(), "c") << relative;
  }
  EXPECT_EQ(filepath(folder.place(), "").path(), folder.place().path());
  EXPECT_THROW(filepath(folder.place(), "a/missing/c"), files::error::file_not_found);
  EXPECT_EQ(thrown<files::error::folder_not_found>([] { filepath(filepath(), ""); }),
            "filepath::filepath() the parent filepath doesn't exist!");
  EXPECT_EQ(thrown<files::error::folder_not_found>([] { filepath(filepath(), "a"); }),
            "filepath::filepath() the parent filepath doesn't exist!" + name_line("a"));
}

TEST(Filepath, IsAnAliasByItsNameAloneAndCannotFollowADeadOne) {
  const test_folder folder;
  const filepath alias = folder.with_file("dead.lnk", "no link");
  const std::string text =
      "files::resolve_file_path() cannot resolve alias!" + path_line(alias.path()) + name_line("dead.lnk");
  EXPECT_EQ(thrown<files::error::cannot_resolve_file>([&] { resolve_file_path(alias); }), text);
  EXPECT_EQ(thrown<files::error::cannot_resolve_file>([&] { filepath(folder.place(), "dead.lnk/a"); }), text);
  EXPECT_FALSE(child_exists(alias, "a"));
  for (const char* const name : {"x.LNK", "x.y.Lnk", ".lnk"}) EXPECT_TRUE(is_alias(folder.with_file(name))) << name;
  for (const char* const name : {"x.lnk2", "lnk", "x.ln"}) EXPECT_FALSE(is_alias(folder.with_file(name))) << name;
}

}  // namespace
