// MIT License. Tests of the Windows calls: wide texts, long paths, shell links, attributes.
#include <windows.h>

#include <shlobj.h>

#include "support/err/exception.h"
#include "support/files/error.h"
#include "support/files/hdd_file.h"
#include "support/files/operations.h"
#include "support/files/wide_text.h"
#include "support/memory/data.h"
#include "tests/support/files/test_folder.h"

namespace {

using files::filepath;
using files::to_long_path;

TEST(WideText, ConvertsBothWays) {
  const std::string narrow = "K\xC3\xA4se \xF0\x9F\x8E\xB5";
  EXPECT_EQ(files::utf8_to_wide(narrow), L"K\u00E4se \U0001F3B5");
  EXPECT_EQ(files::wide_to_utf8(L"K\u00E4se \U0001F3B5"), narrow);
  EXPECT_EQ(files::utf8_to_wide(""), L"");
  EXPECT_EQ(files::wide_to_utf8(L""), "");
}

TEST(LongPath, HasThePrefixFrom260CharactersOnAndKeepsTheServerOfAShare) {
  EXPECT_EQ(to_long_path("C:/a\\b"), L"C:\\a\\b");
  const std::string short_one = "C:\\" + std::string(256, 'a');
  EXPECT_EQ(to_long_path(short_one), files::utf8_to_wide(short_one));
  EXPECT_EQ(to_long_path(short_one + "b"), L"\\\\?\\" + files::utf8_to_wide(short_one + "b"));
  EXPECT_EQ(to_long_path("C:\\\xC3\xA4" + std::string(255, 'a')).size(), 259U) << "characters count, not bytes";
  const std::string rest = "server\\share\\" + std::string(260, 'a');
  EXPECT_EQ(to_long_path("\\\\" + rest), L"\\\\?\\UNC\\" + files::utf8_to_wide(rest));
  EXPECT_EQ(to_long_path("//server/share"), L"\\\\server\\share");
}

TEST(LongPath, WorksInSystemCalls) {
  const test_folder folder;
  EXPECT_TRUE(files::get_user_app_support_path().is_folder());
  filepath deep = folder.place();
  while (deep.path().size() < 300) deep = create_folder(deep, std::string(50, 'd'));
  const filepath made = create_file(deep, "file");
  append_to_file(made, memory::data("abc", 3));
  EXPECT_EQ(files::hdd_file(made, files::file_mode::reading).size(), 3U);
  EXPECT_TRUE(child_exists(deep, "file"));
  // The standard library's removal doesn't know long paths.
  DeleteFileW(to_long_path(made.path()).c_str());
  for (std::string path = deep.path(); path != folder.place().path(); path.resize(path.rfind('\\'))) {
    RemoveDirectoryW(to_long_path(path).c_str());
  }
}

TEST(Filepath, AcceptsUtf16AndForwardSlashesAndKnowsHiddenFiles) {
  const test_folder folder;
  const std::wstring wide = files::utf8_to_wide(folder.place().path()) + L"\\K\u00E4se";
  CloseHandle(CreateFileW(wide.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, FILE_ATTRIBUTE_HIDDEN, nullptr));
  EXPECT_EQ(filepath(wide).name(), "K\xC3\xA4se");
  EXPECT_EQ(filepath(wide).flags(), filepath::exists_flag | filepath::hidden_flag);
  const std::string with_slash = folder.place().path() + "/K\xC3\xA4se";
  EXPECT_EQ(filepath(with_slash).path(), with_slash);
  DeleteFileW(wide.c_str());
}

TEST(HddFile, SharesReadingButNotWriting) {
  const test_folder folder;
  const filepath place = folder.with_file("file", "abc");
  uint32_t done = 1;
  {
    files::hdd_file first(place, files::file_mode::reading);
    EXPECT_NO_THROW(files::hdd_file(place, files::file_mode::reading));
    EXPECT_THROW(files::hdd_file(place, files::file_mode::writing), files::error::cannot_open_file);
    first.write("x", 1, &done);  // unlike on other systems, it isn't reported
    EXPECT_EQ(done, 0U);
  }
  const files::hdd_file first(place, files::file_mode::writing);
  EXPECT_THROW(files::hdd_file(place, files::file_mode::reading), files::error::cannot_open_file);
  EXPECT_THROW(files::hdd_file(place, files::file_mode::writing), files::error::cannot_open_file);
}

void save_link(const std::string& target, const std::string& path) {
  IShellLinkA* link = nullptr;
  IPersistFile* stored = nullptr;
  ASSERT_GE(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkA,
                             reinterpret_cast<void**>(&link)),
            0);
  ASSERT_GE(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&stored)), 0);
  EXPECT_GE(link->SetPath(target.c_str()), 0);
  EXPECT_GE(stored->Save(files::utf8_to_wide(path).c_str(), TRUE), 0);
  stored->Release();
  link->Release();
}

TEST(ShellLink, IsFollowedLikeItsTarget) {
  const test_folder folder;
  folder.with_folder("target/sub");
  folder.with_file("target/sub/file");
  const std::string path = folder.path("link.lnk");
  ASSERT_GE(CoInitialize(nullptr), 0);
  save_link(folder.path("target"), path);
  EXPECT_EQ(resolve_file_path(filepath(path)).path(), folder.path("target"));
  EXPECT_EQ(filepath(folder.place(), "link.lnk/sub/file").path(), folder.path("target/sub/file"));
  EXPECT_TRUE(child_exists(filepath(path), "sub"));
  EXPECT_EQ(get_or_create_folder(folder.place(), "link.lnk").path(), folder.path("target"));
  EXPECT_EQ(create_folder_path(folder.place(), "link.lnk/new").path(), folder.path("target/new"));
  CoUninitialize();
}

}  // namespace
