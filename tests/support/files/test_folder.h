// MIT License. A folder of one test, and words for what is done and thrown in it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <typeinfo>

#include "support/files/filepath.h"
#include "support/files/system_calls.h"

// Goes with the test, and all that lies in it.
class test_folder {
 public:
  test_folder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() / ("kesrel files " + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  test_folder(const test_folder&) = delete;
  test_folder& operator=(const test_folder&) = delete;
  ~test_folder() { std::filesystem::remove_all(path_); }

  files::filepath place() const { return files::filepath(path_.string()); }

  // The path of what lies at `relative`, with the system's separators.
  std::string path(const std::string& relative) const {
    return (path_ / std::filesystem::path(relative).make_preferred()).string();
  }
  files::filepath with_file(const std::string& relative, const std::string& content = "") const {
    std::ofstream(path(relative), std::ios::binary) << content;
    return files::filepath(path(relative));
  }
  files::filepath with_folder(const std::string& relative) const {
    std::filesystem::create_directories(path(relative));
    return files::filepath(path(relative));
  }
  std::string content(const std::string& relative) const {
    std::ifstream file(path(relative), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::filesystem::path path_;
};

// The text of what `action` throws, which has to be an Error and no subclass of it.
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

// The lines that the error texts end in.
inline std::string path_line(const std::string& path) {
  return "\nfull path: \"" + path + '"';
}
inline std::string name_line(const std::string& name) {
  return "\nfile/folder name: \"" + name + '"';
}
