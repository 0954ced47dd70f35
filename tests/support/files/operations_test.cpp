// MIT License. Tests of creating and finding files and folders.
#include "support/files/operations.h"

#include "support/files/error.h"
#include "support/memory/data.h"
#include "tests/support/files/test_folder.h"

namespace {

using files::filepath;

TEST(CreateFile, RefusesAnExistingFileAndReportsTheReasonOfAFailure) {
  const test_folder folder;
  const filepath made = create_file(folder.place(), "new");
  EXPECT_EQ(made.path(), folder.path("new"));
  EXPECT_EQ(made.flags(), filepath::exists_flag);
  // The full path takes the place of the name.
  EXPECT_EQ(thrown<files::error::file_path>([&] { create_file(folder.place(), "new"); }),
            "cannot create file! the file might be opened by another application!" + name_line(made.path()));
  folder.with_folder("taken");
  EXPECT_EQ(thrown<files::error::duplicate_name>([&] { create_file(folder.place(), "taken"); }),
            "CreateFile failed! there is already a folder with that name" + name_line(folder.path("taken")));
  EXPECT_EQ(thrown<files::error::file_path>([&] { create_file(folder.place(), "missing/new"); }),
            "cannot create file! location might be read only or the disk ist full or the filepath is invalid!" +
                name_line(folder.place().path() + files::system::separator + "missing/new"));
}

TEST(CreateFolder, LeavesWhatExistsAloneAndReportsTheReasonOfAFailure) {
  const test_folder folder;
  const filepath made = create_folder(folder.place(), "new");
  EXPECT_EQ(made.path(), folder.path("new"));
  EXPECT_TRUE(made.is_folder() && create_folder(folder.place(), "new").is_folder());
  const filepath file = folder.with_file("file");
  EXPECT_FALSE(create_folder(folder.place(), "file").is_folder());

  const std::string name(300, 'x');
  EXPECT_EQ(thrown<files::error::cannot_create_folder>([&] { create_folder(folder.place(), name); }),
            "cannot create folder! location might be read only or the disk ist full or the filepath is invalid!" +
                path_line(folder.path(name)) + name_line(name));
  std::filesystem::remove(folder.path("new"));
  EXPECT_EQ(thrown<files::error::cannot_create_folder>([&] { create_folder(made, "below"); }),
            "cannot create folder! One or more intermediate directories do not exist!" +
                path_line(folder.path("new/below")) + name_line("below"));
}

TEST(CreateFolderPath, AcceptsBothSlashesAndReturnsAnEmptyPathOnFailure) {
  const test_folder folder;
  folder.with_folder("a");
  EXPECT_EQ(create_folder_path(folder.place(), "a/b\\\\c/").path(), folder.path("a/b/c"));
  EXPECT_TRUE(filepath(folder.path("a/b/c")).is_folder());
  EXPECT_EQ(create_folder_path(folder.place(), "").path(), folder.place().path());

  const std::string lines = path_line(folder.with_file("file").path()) + name_line("file");
  EXPECT_EQ(create_folder_path(folder.place(), "file/below").path(), "");
  EXPECT_EQ(thrown<files::error::folder_not_found>([&] { get_or_create_folder(folder.place(), "file"); }),
            "expected a folder but the found path refers to a file!" + lines);
}

TEST(ChildExists, FindsChildrenOfExistingFolders) {
  const test_folder folder;
  folder.with_file("file");
  EXPECT_TRUE(child_exists(folder.place(), "file"));
  EXPECT_TRUE(child_exists(filepath(folder.place().path() + files::system::separator), "file"));
  EXPECT_FALSE(child_exists(folder.place(), "other"));
  EXPECT_FALSE(child_exists(filepath(), "file"));
}

TEST(AppendToFile, AppendsAndClosesTheFile) {
  const test_folder folder;
  const filepath log = folder.with_file("log", "one");
  for (const auto& more : {memory::data("two", 3), memory::data(), memory::data("3", 1)}) append_to_file(log, more);
  EXPECT_EQ(folder.content("log"), "onetwo3");
}

}  // namespace
