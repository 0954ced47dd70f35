// MIT License.
#include "support/files/hdd_file.h"

#include <string>

#include "support/files/error.h"
#include "support/logbook.h"

namespace files {

hdd_file::hdd_file(const filepath& location, file_mode mode, existing_content content)
    : file(mode), location_(location) {
  open(content);
}

hdd_file::~hdd_file() {
  system::close(handle_);
}

void hdd_file::open(existing_content content) {
  if (location_.path().empty()) {
    throw err::runtime_error("hdd_file::open() cannot open file. the FileName or Path is invalid!");
  }
  if (mode_ == file_mode::reading) {
    handle_ = system::open_to_read(location_.path());
    if (handle_ != system::invalid_handle) return;
    throw error::cannot_open_file("hdd_file::open() cannot open the file! it may not exist?", location_.path(),
                                  location_.name());
  }
  handle_ = system::open_to_write(location_.path());
  if (handle_ == system::invalid_handle) {
    throw error::cannot_open_file("hdd_file::open() cannot open the file! it may be opened by another application?",
                                  location_.path(), location_.name());
  }
  if (content == existing_content::cut) cut();
}

void hdd_file::cut() {
  if (system::move_to_start(handle_) < 0)
    halvern::log_error(("SetFilePointer failed for: " + location_.path()).c_str());
  if (system::cut_here(handle_) < 0) halvern::log_error(("SetEndOfFile failed for: " + location_.path()).c_str());
}

void hdd_file::seek(int64_t offset, seek_origin origin) {
  const int64_t target = seek_target(offset, origin, origin == seek_origin::end ? size() : 0);
  if (target == position_) return;
  if (!system::seek(handle_, target)) {
    throw err::exception("hdd_file::seek() FAILED! position: " + std::to_string(target));
  }
  position_ = target;
}

void hdd_file::read(void* buffer, uint32_t count, uint32_t* done) {
  *done = 0;
  if (system::read(handle_, buffer, count, done) < 0) throw err::exception("hdd_file::read() cannot read from file!");
  position_ += *done;
}

void hdd_file::write(const void* buffer, uint32_t count, uint32_t* done) {
  *done = 0;
  const int32_t answer = system::write(handle_, buffer, count, done);
  position_ += *done;
  if (answer >= 0) return;
  if (system::was_disk_full()) {
    throw error::not_enough_disk_space("cannot write data to file! volume full!", location_.path(), location_.name());
  }
  throw error::cannot_write_to_file("cannot write data to file!", location_.path(), location_.name());
}

uint64_t hdd_file::size() {
  return system::size(handle_);
}

std::unique_ptr<file> hdd_file::clone() {
  return std::make_unique<hdd_file>(location_, mode_);
}

}  // namespace files
