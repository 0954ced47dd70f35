// MIT License. A file that appears under its name only when it is complete, on Windows.
#include <windows.h>
// After windows.h:
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "hosts/effect/partial_file.h"
#include "hosts/effect/paths.h"
#include "hosts/effect/text.h"

namespace fs = std::filesystem;

namespace {

failure unwritable(const std::string& what, const std::error_code& error) {
  return failure(what + " cannot be written: " + error.message());
}

failure unwritable(const std::string& what, int error) {
  return unwritable(what, std::error_code(error, std::generic_category()));
}

fs::path partial_name(const fs::path& target) {
  fs::path name = target;
  name.concat(".").concat(std::to_string(GetCurrentProcessId())).concat(".part");
  return name;
}

}  // namespace

partial_file::partial_file(const std::string& what, const std::string& path)
    : what_(what), target_(end_of_links(path_of(path))), partial_(partial_name(target_)) {
  if (_waccess(target_.c_str(), 2) != 0 && errno != ENOENT) throw unwritable(what_, errno);
  descriptor_ = _wopen(partial_.c_str(), _O_RDWR | _O_CREAT | _O_EXCL | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
  if (descriptor_ < 0) throw unwritable(what_, errno);
}

partial_file::~partial_file() {
  if (descriptor_ >= 0) _close(descriptor_);
  if (!partial_.empty()) _wunlink(partial_.c_str());
}

void partial_file::write(std::string_view bytes) {
  constexpr std::size_t most = 1 << 30;  // the call takes an int
  while (!bytes.empty()) {
    const int written = _write(descriptor_, bytes.data(), static_cast<unsigned>(std::min(bytes.size(), most)));
    if (written < 0) throw unwritable(what_, errno);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

int64_t partial_file::seek(int64_t offset, int whence) {
  return _lseeki64(descriptor_, offset, whence);
}

void partial_file::finish() {
  if (_commit(descriptor_) != 0) throw unwritable(what_, errno);
  // Windows doesn't rename a file that is open.
  if (_close(std::exchange(descriptor_, -1)) != 0) throw unwritable(what_, errno);
  if (!MoveFileExW(partial_.c_str(), target_.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH)) {
    throw unwritable(what_, std::error_code(static_cast<int>(GetLastError()), std::system_category()));
  }
  partial_.clear();
}
