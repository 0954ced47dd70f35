// MIT License. The common interface of all streams.
#pragma once

#include <cstdint>
#include <memory>

namespace files {

enum class file_mode : int32_t { reading = 1, writing = 2 };

enum class seek_origin : int32_t { start = 0, position = 1, end = 2 };

// A stream of bytes with one position for reading and writing, which begins at 0.
class file {
 public:
  virtual ~file() = default;

  file(const file&) = delete;
  file& operator=(const file&) = delete;

  virtual void seek(int64_t offset, seek_origin origin) = 0;

  // Transfer up to `count` bytes and advance the position past them; `done` receives their number.
  virtual void read(void* buffer, uint32_t count, uint32_t* done) = 0;
  virtual void write(const void* buffer, uint32_t count, uint32_t* done) = 0;

  virtual uint64_t size() = 0;

  // Opens the same file or resource again, at position 0.
  virtual std::unique_ptr<file> clone() = 0;

  // Reserves the last slot of the virtual table; no stream overrides it.
  virtual bool reserved_operation() { return false; }

  file_mode mode() const { return mode_; }
  int64_t position() const { return position_; }

 protected:
  explicit file(file_mode mode) : mode_(mode) {}

  // The target of a seek in a stream of `size` bytes: possibly outside the stream, saturated at the type's limits.
  int64_t seek_target(int64_t offset, seek_origin origin, uint64_t size) const;

  uint64_t reserved_ = 0;
  file_mode mode_;
  int64_t position_ = 0;
};

}  // namespace files
