// MIT License.
#include "support/files/filepath.h"

#include <optional>

#include "support/files/error.h"
#include "support/files/operations.h"
#include "support/files/path_tokenizer.h"
#include "support/files/system_calls.h"

namespace files {

namespace {

// The path of `component` in `parent`, or in the folder that `parent` links to.
std::string child_path(const filepath& parent, std::string_view component) {
  std::string path = is_alias(parent) ? resolve_file_path(parent).path() : parent.path();
  path += system::separator;
  return path.append(component);
}

}  // namespace

filepath::filepath(const std::string& path) : path_(path) {
  split_name();
  read_attributes();
}

filepath::filepath(const filepath& parent, std::string_view relative) {
  if (!parent.exists()) {
    throw error::folder_not_found("filepath::filepath() the parent filepath doesn't exist!", parent.path(),
                                  std::string(relative));
  }
  *this = parent;
  path_tokenizer components(relative, "/");
  while (const auto component = components.next()) *this = filepath(child_path(*this, *component));
}

void filepath::split_name() {
  std::string_view text = path_;
  if (text.ends_with(system::separator)) text.remove_suffix(1);
  if (text.empty() && !path_.empty()) throw error::file_path("its not allowed to have an empty filename!", path_, "");
  name_ = text.substr(text.rfind(system::separator) + 1);  // the whole text when there is no separator
}

void filepath::read_attributes() {
  flags_ = 0;
  const std::optional<system::attributes> found = system::read_attributes(path_);
  if (!found) {
    throw error::file_not_found("GetFileAttributes failed! the file/folder doesn't exist!", path_, name_);
  }
  if (found->folder) flags_ |= folder_flag;
  if (found->hidden || name_.starts_with('.')) flags_ |= hidden_flag;
  flags_ |= exists_flag;
}

}  // namespace files
