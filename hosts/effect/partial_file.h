// MIT License. A file that appears under its name only when it is whole.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

// Until it is finished it grows beside its place, in a file that vanishes with this object. It takes over the
// permissions of the file that it replaces, and its owner as far as the system allows.
class partial_file {
 public:
  // Creates the growing file.
  //   what     how messages name the file, say "output 'sung.wav'"
  //   throws   failure when the place cannot be written to
  partial_file(const std::string& what, const std::string& path);
  ~partial_file();
  partial_file(const partial_file&) = delete;
  partial_file& operator=(const partial_file&) = delete;

  // The growing file, empty at first, for reading and writing. It stays this object's to close.
  int descriptor() const { return descriptor_; }

  // Appends `bytes`. Throws failure.
  void write(std::string_view bytes);

  // Gives the file, when all of it is on the disk, its name. Throws failure.
  void finish();

 private:
  std::string what_;
  std::filesystem::path target_;  // where links lead to
  std::filesystem::path partial_;
  int descriptor_ = -1;
};

// Throws failure when `path` is there and no regular file, or is the very file `other`, by whatever name. An empty
// `other` is none.
//   what, other_what   how the message names them
void check_place(const std::string& what, const std::string& path, const std::string& other_what,
                 const std::string& other);
