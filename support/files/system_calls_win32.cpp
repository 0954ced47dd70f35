// MIT License. Files and folders on Windows.
#include "support/files/system_calls.h"

#include <windows.h>

#include "support/files/filepath.h"
#include "support/files/wide_text.h"

namespace files {

filepath::filepath(const std::wstring& path) : filepath(wide_to_utf8(path)) {}

namespace system {

namespace {

HANDLE handle_of(file_handle handle) {
  return reinterpret_cast<HANDLE>(handle);
}

file_handle opened(const std::string& path, DWORD access, DWORD sharing, DWORD disposition) {
  return reinterpret_cast<file_handle>(
      CreateFileW(to_long_path(path).c_str(), access, sharing, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr));
}

}  // namespace

std::optional<attributes> read_attributes(const std::string& path) {
  const DWORD found = GetFileAttributesW(to_long_path(path).c_str());
  if (found == INVALID_FILE_ATTRIBUTES) return std::nullopt;
  return attributes{.folder = (found & FILE_ATTRIBUTE_DIRECTORY) != 0, .hidden = (found & FILE_ATTRIBUTE_HIDDEN) != 0};
}

bool create_file(const std::string& path) {
  const file_handle handle = opened(path, GENERIC_WRITE, 0, CREATE_NEW);
  close(handle);
  return handle != invalid_handle;
}

folder_answer create_folder(const std::string& path) {
  if (CreateDirectoryW(to_long_path(path).c_str(), nullptr) != 0) return folder_answer::made;
  switch (GetLastError()) {
    case ERROR_ALREADY_EXISTS:
      return folder_answer::already_exists;
    case ERROR_PATH_NOT_FOUND:
      return folder_answer::parent_missing;
    default:
      return folder_answer::failed;
  }
}

file_handle open_to_write(const std::string& path) {
  return opened(path, GENERIC_WRITE, 0, OPEN_ALWAYS);
}

file_handle open_to_read(const std::string& path) {
  return opened(path, GENERIC_READ, FILE_SHARE_READ, OPEN_EXISTING);
}

// Gives up on paths beyond the system's usual length limit: the prefix that lifts it would need a new string.
file_handle open_to_append(const char* path) noexcept {
  wchar_t wide[MAX_PATH];
  if (MultiByteToWideChar(CP_UTF8, 0, path, -1, wide, MAX_PATH) <= 0) return invalid_handle;
  return reinterpret_cast<file_handle>(CreateFileW(wide, FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                                   OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
}

void close(file_handle handle) {
  if (handle != invalid_handle) CloseHandle(handle_of(handle));
}

int32_t read(file_handle handle, void* buffer, uint32_t count, uint32_t* done) {
  DWORD got = 0;
  const BOOL answer = ReadFile(handle_of(handle), buffer, count, &got, nullptr);
  *done = got;
  return answer;
}

int32_t write(file_handle handle, const void* buffer, uint32_t count, uint32_t* done) {
  DWORD put = 0;
  const BOOL answer = WriteFile(handle_of(handle), buffer, count, &put, nullptr);
  *done = put;
  return answer;
}

int32_t move_to_start(file_handle handle) {
  return static_cast<int32_t>(SetFilePointer(handle_of(handle), 0, nullptr, FILE_BEGIN));
}

int32_t cut_here(file_handle handle) {
  return SetEndOfFile(handle_of(handle));
}

bool was_disk_full() {
  return GetLastError() == ERROR_HANDLE_DISK_FULL;
}

bool seek(file_handle handle, int64_t position) {
  auto upper_half = static_cast<LONG>(position >> 32);
  SetLastError(NO_ERROR);  // the lower half of a good position may look negative too
  const DWORD lower_half =
      SetFilePointer(handle_of(handle), static_cast<LONG>(position & 0xFFFFFFFF), &upper_half, FILE_BEGIN);
  return static_cast<LONG>(lower_half) >= 0 || GetLastError() == NO_ERROR;
}

uint64_t size(file_handle handle) {
  DWORD upper_half = 0;
  const DWORD lower_half = GetFileSize(handle_of(handle), &upper_half);
  return uint64_t{upper_half} << 32 | lower_half;
}

}  // namespace system

}  // namespace files
