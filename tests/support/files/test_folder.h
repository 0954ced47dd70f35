// MIT License. A folder for a test, and words for the errors of files.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <typeinfo>

#include "support/files/filepath.h"
#include "support/files/system_calls.h"
#include "tests/words/files.h"
#include "tests/words/temporary_folder.h"

// A temporary folder, and words for what a test puts into it.
class test_folder : public temporary_folder {
 public:
  files::filepath place() const { return files::filepath(path()); }
  files::filepath with_file(const std::string& relative, const std::string& content = "") const {
    write_file(path(relative), content);
    return files::filepath(path(relative));
  }
  files::filepath with_folder(const std::string& relative) const {
    std::filesystem::create_directories(path(relative));
    return files::filepath(path(relative));
  }
  std::string content(const std::string& relative) const { return read_file(path(relative)); }
};

// The text of what `action` throws, which has to be exactly an Error, not a subclass.
template <typename Error, typename Action>
std::string thrown(Action action) {
  try {
    action();
  } catch (const Error& error) {
    EXPECT_STREQ(typeid(error).name(), typeid(Error).name());
    return error.what();
  }
  return "nothing";
}

// The last lines of the errors' texts.
inline std::string path_line(const std::string& path) {
  return "\nfull path: \"" + path + '"';
}
inline std::string name_line(const std::string& name) {
  return "\nfile/folder name: \"" + name + '"';
}
