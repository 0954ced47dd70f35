// MIT License. Tests of links, permissions, long names and limits of files that kesrel-render writes.
#include <sys/resource.h>

#include <filesystem>

#include "tests/hosts/command.h"

namespace fs = std::filesystem;

using PartialFileOfPosix = command_fixture;

TEST_F(PartialFileOfPosix, FollowsLinksAndKeepsPermissions) {
  const auto target = folder.path("target.wav");
  fs::create_symlink("target.wav", folder.path("inner.wav"));
  fs::create_symlink(folder.path("inner.wav"), output);
  expect_refusal({voice, output, "--save-state", target}, "is the output itself");
  done({voice, output});
  EXPECT_TRUE(fs::is_symlink(output));
  ASSERT_TRUE(fs::is_regular_file(fs::symlink_status(target))) << "a link may lead to a file that doesn't exist yet";

  for (const auto permissions : {fs::perms{0600}, fs::perms{0664}}) {
    fs::permissions(target, permissions);
    done({voice, output});
    EXPECT_EQ(fs::status(target).permissions(), permissions);
  }
  fs::remove(target);
  fs::create_symlink("inner.wav", target);
  expect_refusal({voice, output}, "cannot be written: Too many levels of symbolic links");
}

TEST_F(PartialFileOfPosix, MayHaveTheLongestName) {
  std::string wide;
  for (int i = 0; i < 125; ++i) wide += "\u00e9";
  for (const auto& name : {std::string(246, 'x'), std::string(251, 'x'), wide}) {
    done({voice, folder.path(name + ".wav")});
    EXPECT_EQ(run({voice, folder.path(name + ".wav"), "--normalize", "-14"}).status, 0);
  }
  EXPECT_EQ(listing().size(), 4U);
}

TEST_F(PartialFileOfPosix, IsDeletedWhenTheFileCannotGrow) {
  rlimit former{};
  getrlimit(RLIMIT_FSIZE, &former);
  const rlimit lower{2000, former.rlim_max};
  setrlimit(RLIMIT_FSIZE, &lower);
  expect_refusal({voice, output}, "out.wav' cannot be written: File too large");
  expect_refusal({voice, output, "--normalize", "-30"}, "cannot be written: System error : File too large");
  expect_refusal({"--save-state", output}, "state '" + output + "' cannot be written: File too large");
  setrlimit(RLIMIT_FSIZE, &former);
  // By a byte, at the very end.
  for (const char* const name : {"out.wav", "out.flac", "out.ogg", "out.opus"}) {
    const std::string file = folder.path(name);
    done({voice, file});
    const rlimit close{fs::file_size(file) - 1, former.rlim_max};
    fs::remove(file);
    setrlimit(RLIMIT_FSIZE, &close);
    expect_refusal({voice, file}, "cannot be written: File too large");
    setrlimit(RLIMIT_FSIZE, &former);
  }
}

TEST_F(PartialFileOfPosix, IsRefusedInPlaceOfTheVoiceOrADevice) {
  expect_refusal({voice, "/dev/null"}, "no regular file");
  fs::create_symlink(voice, folder.path("link.wav"));
  expect_refusal({voice, folder.path("link.wav")}, "is the voice itself");
  expect_refusal({voice, output, "--save-state", folder.path("link.wav")}, "is the voice itself");
}
