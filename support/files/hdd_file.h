// MIT License. A file on disk as a stream.
#pragma once

#include "support/files/file.h"
#include "support/files/filepath.h"
#include "support/files/system_calls.h"

namespace files {

// What becomes of a file's bytes when it is opened for writing.
enum class existing_content { cut, keep };

class hdd_file : public file {
 public:
  // Opens `location` for reading, or for writing, which makes the file when it is missing and closes it to others on
  // Windows. Throws err::runtime_error for an empty location and error::cannot_open_file.
  hdd_file(const filepath& location, file_mode mode, existing_content content = existing_content::cut);
  ~hdd_file() override;

  // Throws err::exception when the system refuses the place. Behind the end is allowed.
  void seek(int64_t offset, seek_origin origin) override;

  // A read that fails reads nothing, and doesn't tell.
  void read(void* buffer, uint32_t count, uint32_t* done) override;

  // Throws error::not_enough_disk_space and error::cannot_write_to_file where the system call answers below zero, as
  // POSIX does; on Windows a failed write tells itself by `done` alone.
  void write(const void* buffer, uint32_t count, uint32_t* done) override;

  uint64_t size() override;

  // In writing mode the clone cuts the file.
  std::unique_ptr<file> clone() override;

 private:
  void open(existing_content content);
  void cut();

  filepath location_;
  system::file_handle handle_ = system::invalid_handle;
};

}  // namespace files
