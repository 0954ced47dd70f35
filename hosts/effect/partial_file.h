// MIT License. A file that appears under its name only when it is complete.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

// Until finish(), the bytes are in a hidden file in the same folder, which is deleted with this object. The result gets
// the permissions of the file that it replaces, and its owner as far as the system allows.
class partial_file {
 public:
  // Creates the hidden file.
  //   what     how messages name the file, for example "output 'sung.wav'"
  //   throws   failure when `path` cannot be written
  partial_file(const std::string& what, const std::string& path);
  ~partial_file();
  partial_file(const partial_file&) = delete;
  partial_file& operator=(const partial_file&) = delete;

  // The hidden file, empty at first, open for reading and writing. This object closes it.
  int descriptor() const { return descriptor_; }

  // Writes `bytes` where the last ones ended, or where seek() has gone. Throws failure.
  void write(std::string_view bytes);

  //   whence    SEEK_SET, SEEK_CUR or SEEK_END
  //   returns   the new place in bytes from the start, or -1
  int64_t seek(int64_t offset, int whence);

  // Flushes the file to the disk, then gives it its name. Throws failure.
  void finish();

 private:
  std::string what_;
  std::filesystem::path target_;  // after following links
  std::filesystem::path partial_;
  int descriptor_ = -1;
};

// Throws failure when `path` exists and isn't a regular file, and when it is the same file as `other`, even under a
// different name. An empty `other` matches nothing.
//   what, other_what   how the message names them
void check_target(const std::string& what, const std::string& path, const std::string& other_what,
                  const std::string& other);

// The path that the symbolic links at `path` lead to, whether or not a file exists there. A cycle of links is returned
// as a link.
std::filesystem::path end_of_links(std::filesystem::path path);
