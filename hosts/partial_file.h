// MIT License. A file that appears under its name only when it is whole.
#pragma once

#include <filesystem>
#include <string>

// Until it is finished it grows beside its place, in a file that vanishes with this object.
class partial_file {
 public:
  // Creates the growing file.
  //   what     how messages name the file, say "output 'sung.wav'"
  //   throws   failure when the place cannot be written to
  partial_file(const std::string& what, const std::string& path);
  ~partial_file();
  partial_file(const partial_file&) = delete;
  partial_file& operator=(const partial_file&) = delete;

  // The growing file, empty at first.
  const std::filesystem::path& path() const { return partial_; }

  // Gives the file, which nobody writes to any more, its name. Throws failure.
  void finish();

 private:
  std::string what_;
  std::filesystem::path target_;  // where links lead to
  std::filesystem::path partial_;
};

// Throws failure when `path` is there and no regular file, or is the very file `other`, by whatever name. An empty
// `other` is none.
//   what, other_what   how the message names them
void check_place(const std::string& what, const std::string& path, const std::string& other_what,
                 const std::string& other);
