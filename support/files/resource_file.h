// MIT License. A resource of the module that contains this code, as a read-only stream.
#pragma once

#include <string>

#include "support/files/file.h"

namespace files {

class resource_file : public file {
 public:
  // Finds the resource by type and name, as UTF-8. On Windows it is one of the module's resource data, in a neutral
  // language; on POSIX it was registered with add_embedded_resource. Throws err::runtime_error when it isn't found.
  resource_file(const std::string& type_name, const std::string& res_name);

  // Throws err::logic_error for a target at or past the end. Targets before the start are allowed; reading there gives
  // zeros up to the first byte.
  void seek(int64_t offset, seek_origin origin) override;

  // Reads what is left when that is less than `count`; throws err::logic_error when nothing is left.
  void read(void* buffer, uint32_t count, uint32_t* done) override;

  // Always throws err::runtime_error.
  void write(const void* buffer, uint32_t count, uint32_t* done) override;

  uint64_t size() override { return length_; }
  std::unique_ptr<file> clone() override;

 private:
  void open();

  const void* module_;
  std::string type_name_;
  uint32_t id_ = 0;  // names the resource when `res_name_` is empty
  uint32_t language_ = 0;
  std::string res_name_;
  const uint8_t* bytes_ = nullptr;
  uint32_t length_ = 0;
};

}  // namespace files
