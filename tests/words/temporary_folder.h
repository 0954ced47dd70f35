// MIT License. A folder for one test.
#pragma once

#include <filesystem>
#include <random>
#include <string>
#include <system_error>

// A new, empty folder, removed with everything in it when the object is destroyed. Its name contains a blank, so that a
// path without the quotes that it needs is noticed.
class temporary_folder {
 public:
  temporary_folder() {
    std::random_device random;
    do {
      path_ = std::filesystem::temp_directory_path() / ("kesrel test " + std::to_string(random()));
    } while (!std::filesystem::create_directory(path_));
  }
  ~temporary_folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  temporary_folder(const temporary_folder&) = delete;
  temporary_folder& operator=(const temporary_folder&) = delete;

  std::string path() const { return path_.string(); }

  // The path of something in the folder, with the system's separators.
  std::string path(const std::string& relative) const {
    return (path_ / std::filesystem::path(relative).make_preferred()).string();
  }

 private:
  std::filesystem::path path_;
};
