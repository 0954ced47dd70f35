// MIT License. Tests of where a program looks for its module.
#include <filesystem>

#include "tests/hosts/command.h"

namespace fs = std::filesystem;

namespace {

const fs::path built = KESREL_RENDER;
const fs::path module_name = "KesrelVocoder4ME.so";

// A copy of kesrel-render in the folder's bin.
class ModuleEntry : public command_fixture {
 protected:
  ModuleEntry() {
    fs::create_directory(folder.path("bin"));
    fs::copy_file(built, program);
  }

  outcome run_copy() const { return run({"--list-programs"}, {}, program.c_str()); }

  const std::string program = folder.path("bin/kesrel-render");
};

}  // namespace

TEST_F(ModuleEntry, IsFoundWhereAnInstallationKeepsIt) {
  fs::create_directories(folder.path("lib/kesrel-vocoder"));
  fs::create_symlink(built.parent_path() / module_name, folder.path("lib/kesrel-vocoder") / module_name);
  EXPECT_EQ(run_copy().status, 0);

  fs::create_symlink(program, folder.path("link"));
  EXPECT_EQ(run({"--list-programs"}, {}, folder.path("link").c_str()).status, 0) << "through a link elsewhere";
}

TEST_F(ModuleEntry, IsPreferredBesideTheProgram) {
  fs::create_directories(folder.path("lib/kesrel-vocoder"));
  write_file(folder.path("lib/kesrel-vocoder/KesrelVocoder4ME.so"), "no module");
  EXPECT_TRUE(contains(run_copy().error, "lib/kesrel-vocoder/KesrelVocoder4ME.so"));

  fs::create_symlink(built.parent_path() / module_name, folder.path("bin") / module_name);
  EXPECT_EQ(run_copy().status, 0);
}

TEST_F(ModuleEntry, IsMissedByBothNames) {
  const auto ended = run_copy();
  EXPECT_EQ(ended.status, 2);
  EXPECT_TRUE(contains(ended.error, "neither '" + folder.path("bin/KesrelVocoder4ME.so"))) << ended.error;
  EXPECT_TRUE(contains(ended.error, "nor '" + folder.path("lib/kesrel-vocoder/KesrelVocoder4ME.so"))) << ended.error;
}
