// MIT License. A file on disk as a stream.
#pragma once

#include "support/files/file.h"
#include "support/files/filepath.h"
#include "support/files/system_calls.h"

namespace files {

// Whether opening for writing truncates a file or keeps its bytes.
enum class existing_content { cut, keep };

class hdd_file : public file {
 public:
  // Opens `location` for reading, or for writing, which creates a missing file and, on Windows, locks others
  // out. Throws err::runtime_error for an empty location and error::cannot_open_file.
  hdd_file(const filepath& location, file_mode mode, existing_content content = existing_content::cut);
  ~hdd_file() override;

  // May seek past the end. Throws err::exception when the system refuses the position.
  void seek(int64_t offset, seek_origin origin) override;

  // A failed read reads nothing and reports no error.
  void read(void* buffer, uint32_t count, uint32_t* done) override;

  // Throws error::not_enough_disk_space and error::cannot_write_to_file when the system call returns a negative
  // number, as on POSIX; on Windows only `done` shows that a write failed.
  void write(const void* buffer, uint32_t count, uint32_t* done) override;

  uint64_t size() override;

  // In writing mode the clone truncates the file.
  std::unique_ptr<file> clone() override;

 private:
  void open(existing_content content);
  void cut();

  filepath location_;
  system::file_handle handle_ = system::invalid_handle;
};

}  // namespace files
