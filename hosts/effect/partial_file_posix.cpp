// MIT License. A file that appears under its name only when it is complete, on POSIX.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <system_error>

#include "hosts/effect/partial_file.h"
#include "hosts/effect/paths.h"
#include "hosts/effect/text.h"

namespace fs = std::filesystem;

namespace {

failure unwritable(const std::string& what, int error) {
  return failure(what + " cannot be written: " + std::generic_category().message(error));
}

// The hidden file that is to become `target`. Its name is shortened where the file system limits the length.
fs::path partial_name(const fs::path& target) {
  const auto folder = target.parent_path();
  const long most = pathconf(folder.empty() ? "." : folder.c_str(), _PC_NAME_MAX);
  const std::string tail = std::string(".").append(std::to_string(getpid())).append(".part");
  const std::size_t room = static_cast<std::size_t>(most > 0 ? most : NAME_MAX) - tail.size();
  std::string name = std::string(".").append(target.filename().string());
  if (name.size() > room) {
    std::size_t end = room;
    while (end > 1 && (name[end] & 0xC0) == 0x80) --end;  // not inside a UTF-8 character
    name.resize(end);
  }
  return folder / name.append(tail);
}

// File systems without owners or permissions refuse, and there is nothing to keep.
void copy_permissions(const struct stat& former, int descriptor) {
  if (fchown(descriptor, former.st_uid, former.st_gid) != 0) errno = 0;
  if (fchmod(descriptor, former.st_mode & 07777) != 0) errno = 0;
}

}  // namespace

partial_file::partial_file(const std::string& what, const std::string& path)
    : what_(what), target_(end_of_links(path_of(path))), partial_(partial_name(target_)) {
  struct stat former {};
  const bool replaces = stat(target_.c_str(), &former) == 0;
  if (!replaces && errno != ENOENT) throw unwritable(what_, errno);
  if (replaces && access(target_.c_str(), W_OK) != 0) throw unwritable(what_, errno);

  descriptor_ = open(partial_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, replaces ? 0600 : 0666);
  if (descriptor_ < 0) throw unwritable(what_, errno);
  if (replaces) copy_permissions(former, descriptor_);
}

partial_file::~partial_file() {
  close(descriptor_);
  if (!partial_.empty()) unlink(partial_.c_str());
}

void partial_file::write(std::string_view bytes) {
  while (!bytes.empty()) {
    const auto written = ::write(descriptor_, bytes.data(), bytes.size());
    if (written < 0) throw unwritable(what_, errno);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

int64_t partial_file::seek(int64_t offset, int whence) {
  return lseek(descriptor_, offset, whence);
}

void partial_file::finish() {
  // Some file systems notice only now that they are full. Those that don't support the call answer EINVAL.
  if (fsync(descriptor_) != 0 && errno != EINVAL) throw unwritable(what_, errno);
  if (rename(partial_.c_str(), target_.c_str()) != 0) throw unwritable(what_, errno);
  partial_.clear();
}
