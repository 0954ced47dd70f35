// MIT License. The operating system's calls for files, folders and streams; paths are UTF-8.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace files::system {

// Between the components of a path.
constexpr char separator = static_cast<char>(std::filesystem::path::preferred_separator);

struct attributes {
  bool folder = false;
  bool hidden = false;
};

// Nothing when they can't be read, most often because nothing is there.
std::optional<attributes> read_attributes(const std::string& path);

// Creates an empty file unless something of that name exists.
bool create_file(const std::string& path);

enum class folder_answer { made, already_exists, parent_missing, failed };
folder_answer create_folder(const std::string& path);

using file_handle = intptr_t;  // a HANDLE on Windows, a file descriptor elsewhere
constexpr file_handle invalid_handle = -1;

// Both return invalid_handle on failure, and for a folder.
file_handle open_to_write(const std::string& path);  // creates a missing file
file_handle open_to_read(const std::string& path);
void close(file_handle handle);

// Opens a file for appending, creating it when missing. Safe in a signal handler, as are write() and close().
file_handle open_to_append(const char* path) noexcept;

// These return what the system calls return: negative numbers are failures. Windows returns 0 for a failed read or
// write, which therefore goes unnoticed, and so does a failed read on POSIX.
int32_t read(file_handle handle, void* buffer, uint32_t count, uint32_t* done);
int32_t write(file_handle handle, const void* buffer, uint32_t count, uint32_t* done);
int32_t move_to_start(file_handle handle);
int32_t cut_here(file_handle handle);

// Whether the last write failed because the disk was full.
bool was_disk_full();

// False when the system refuses the position.
bool seek(file_handle handle, int64_t position);
uint64_t size(file_handle handle);

}  // namespace files::system
