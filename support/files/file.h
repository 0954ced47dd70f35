// MIT License. The one interface of all that is read and written.
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

  // Move up to `count` bytes and the position behind them; `done` gets how many they were.
  virtual void read(void* buffer, uint32_t count, uint32_t* done) = 0;
  virtual void write(const void* buffer, uint32_t count, uint32_t* done) = 0;

  virtual uint64_t size() = 0;

  // Opens the same anew, at position 0.
  virtual std::unique_ptr<file> clone() = 0;

  // Takes the last place of the table of operations; no stream answers anything else.
  virtual bool reserved_operation() { return false; }

  file_mode mode() const { return mode_; }
  int64_t position() const { return position_; }

 protected:
  explicit file(file_mode mode) : mode_(mode) {}

  // Where a seek of a stream of `size` bytes leads. It may lie outside the stream, and ends at the limits of the type.
  int64_t seek_target(int64_t offset, seek_origin origin, uint64_t size) const;

  uint64_t reserved_ = 0;
  file_mode mode_;
  int64_t position_ = 0;
};

}  // namespace files
