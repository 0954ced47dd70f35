// MIT License.
#include "support/files/resource_file.h"

#include <algorithm>
#include <cstring>

#include "support/err/exception.h"
#include "support/files/resource_calls.h"

namespace files {

resource_file::resource_file(const std::string& type_name, const std::string& res_name)
    : file(file_mode::reading), module_(system::this_module()), type_name_(type_name), res_name_(res_name) {
  open();
}

void resource_file::open() {
  const void* const found = system::find_resource(module_, type_name_, res_name_, id_, language_);
  if (found == nullptr) throw err::runtime_error("resource_file::open() cannot find a resource!");
  length_ = system::resource_size(module_, found);
  if (length_ == 0) throw err::runtime_error("resource_file::open() cannot get the size of a resource!");
  bytes_ = system::lock_resource(module_, found);
  if (bytes_ == nullptr) throw err::runtime_error("resource_file::open() cannot lock a resource!");
}

void resource_file::seek(int64_t offset, seek_origin origin) {
  const int64_t target = seek_target(offset, origin, length_);
  if (target >= int64_t{length_}) throw err::logic_error("resource_file::seek() Overflow Error!");
  position_ = target;
}

void resource_file::read(void* buffer, uint32_t count, uint32_t* done) {
  if (position_ >= int64_t{length_}) throw err::logic_error("resource_file::read() END OF FILE! cannot read more!");
  auto* const out = static_cast<uint8_t*>(buffer);
  // Zeros precede the first byte. The distance to it may need all 64 bits.
  const uint64_t before = position_ < 0 ? 0 - static_cast<uint64_t>(position_) : 0;
  const auto zeros = static_cast<uint32_t>(std::min<uint64_t>(count, before));
  if (zeros > 0) std::memset(out, 0, zeros);
  const auto start = static_cast<uint32_t>(std::max<int64_t>(position_, 0));
  const uint32_t copied = std::min(count - zeros, length_ - start);
  if (copied > 0) std::memcpy(out + zeros, bytes_ + start, copied);
  *done = zeros + copied;
  position_ += *done;
}

void resource_file::write(const void*, uint32_t, uint32_t*) {
  throw err::runtime_error("resource_file::write() not supported!");
}

std::unique_ptr<file> resource_file::clone() {
  return std::make_unique<resource_file>(type_name_, res_name_);
}

}  // namespace files
