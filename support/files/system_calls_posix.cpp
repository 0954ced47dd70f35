// MIT License. Files and folders on POSIX.
#include "support/files/system_calls.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace files::system {

namespace {

// The log names the user's files, which are nobody else's business.
constexpr mode_t file_rights = 0600;
constexpr mode_t folder_rights = 0700;

// Repeats a call that a signal interrupted.
template <typename Call>
auto uninterrupted(Call call) {
  auto answer = call();
  while (answer < 0 && errno == EINTR) answer = call();
  return answer;
}

int opened(const char* path, int flags) {
  return uninterrupted([&] { return ::open(path, flags | O_CLOEXEC, file_rights); });
}

bool is_folder(int descriptor) {
  struct stat found {};
  return fstat(descriptor, &found) == 0 && S_ISDIR(found.st_mode);
}

}  // namespace

std::optional<attributes> read_attributes(const std::string& path) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0) return std::nullopt;
  return attributes{.folder = S_ISDIR(found.st_mode), .hidden = false};
}

bool create_file(const std::string& path) {
  const int descriptor = opened(path.c_str(), O_WRONLY | O_CREAT | O_EXCL);
  if (descriptor < 0) return false;
  close(descriptor);
  return true;
}

folder_answer create_folder(const std::string& path) {
  if (mkdir(path.c_str(), folder_rights) == 0) return folder_answer::made;
  if (errno == EEXIST) return folder_answer::already_exists;
  return errno == ENOENT || errno == ENOTDIR ? folder_answer::parent_missing : folder_answer::failed;
}

file_handle open_to_write(const std::string& path) {
  return opened(path.c_str(), O_WRONLY | O_CREAT);
}

file_handle open_to_read(const std::string& path) {
  const int descriptor = opened(path.c_str(), O_RDONLY);
  if (descriptor < 0 || !is_folder(descriptor)) return descriptor;
  close(descriptor);  // a folder: POSIX would open it, but reading would fail
  return invalid_handle;
}

file_handle open_to_append(const char* path) noexcept {
  return opened(path, O_WRONLY | O_CREAT | O_APPEND);
}

void close(file_handle handle) {
  if (handle != invalid_handle) ::close(static_cast<int>(handle));
}

// Usually one call. Fewer bytes than requested mean the end of the file, a device's limit, or a signal.
int32_t read(file_handle handle, void* buffer, uint32_t count, uint32_t* done) {
  const ssize_t got = uninterrupted([&] { return ::read(static_cast<int>(handle), buffer, count); });
  *done = got > 0 ? static_cast<uint32_t>(got) : 0;
  return got >= 0 ? 1 : 0;
}

// Continues after a short write, so that the next call reports why it was short.
int32_t write(file_handle handle, const void* buffer, uint32_t count, uint32_t* done) {
  const auto* const bytes = static_cast<const char*>(buffer);
  *done = 0;
  while (*done < count) {
    const ssize_t put = uninterrupted([&] { return ::write(static_cast<int>(handle), bytes + *done, count - *done); });
    if (put <= 0) return put < 0 ? -1 : 1;
    *done += static_cast<uint32_t>(put);
  }
  return 1;
}

int32_t move_to_start(file_handle handle) {
  return lseek(static_cast<int>(handle), 0, SEEK_SET) < 0 ? -1 : 0;
}

int32_t cut_here(file_handle handle) {
  const off_t here = lseek(static_cast<int>(handle), 0, SEEK_CUR);
  return uninterrupted([&] { return ftruncate(static_cast<int>(handle), here); });
}

bool was_disk_full() {
  return errno == ENOSPC || errno == EDQUOT;  // the device is full, or the user's share of it
}

bool seek(file_handle handle, int64_t position) {
  return lseek(static_cast<int>(handle), position, SEEK_SET) >= 0;
}

uint64_t size(file_handle handle) {
  struct stat found {};
  return fstat(static_cast<int>(handle), &found) == 0 ? static_cast<uint64_t>(found.st_size) : 0;
}

}  // namespace files::system
