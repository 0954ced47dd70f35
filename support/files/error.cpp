// MIT License.
#include "support/files/error.h"

namespace files::error {

namespace {

std::string described(const std::string& message, const std::string& path, const std::string& name,
                      const std::string& last_line) {
  std::string text = message;
  if (!path.empty()) text += "\nfull path: \"" + path + '"';
  if (!name.empty()) text += "\nfile/folder name: \"" + name + '"';
  return text + last_line;
}

}  // namespace

file::file(const std::string& message, const std::string& path, const std::string& name)
    : file(message, path, name, "") {}

file::file(const std::string& message, const std::string& path, const std::string& name, const std::string& last_line)
    : err::runtime_error(described(message, path, name, last_line)), path_(path), name_(name) {}

file_path::file_path(const std::string& message, const std::string& path, const std::string& name, int32_t error_id)
    : file(message, path, name, error_id != 0 ? "\nerror id: " + std::to_string(error_id) : ""), error_id_(error_id) {}

}  // namespace files::error
