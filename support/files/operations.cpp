// MIT License.
#include "support/files/operations.h"

#include <algorithm>
#include <optional>
#include <string_view>

#include "support/debugger_output.h"
#include "support/files/error.h"
#include "support/files/hdd_file.h"
#include "support/files/path_tokenizer.h"
#include "support/files/system_calls.h"
#include "support/memory/data.h"

namespace files {

namespace {

std::string joined(const filepath& folder, const std::string& name) {
  return folder.path() + system::separator + name;
}

filepath followed(const filepath& location) {
  return is_alias(location) ? resolve_file_path(location) : location;
}

// These errors carry the full path as their name, so that their text has one line for both.
[[noreturn]] void throw_cannot_create_file(const std::string& path) {
  const std::optional<system::attributes> there = system::read_attributes(path);
  if (!there) {
    throw error::file_path(
        "cannot create file! location might be read only or the disk ist full or the filepath is invalid!", "", path);
  }
  if (there->folder) {
    throw error::duplicate_name("CreateFile failed! there is already a folder with that name", "", path);
  }
  throw error::file_path("cannot create file! the file might be opened by another application!", "", path);
}

[[noreturn]] void throw_cannot_create_folder(const std::string& path, const std::string& name) {
  const std::optional<system::attributes> there = system::read_attributes(path);
  if (!there) {
    throw error::cannot_create_folder(
        "cannot create folder! location might be read only or the disk ist full or the filepath is invalid!", path,
        name);
  }
  if (!there->folder) {
    throw error::duplicate_name("CreateDirectory failed! there is already a file with that name", path, name);
  }
  throw error::file_path("cannot create folder!", path, name);
}

}  // namespace

bool is_alias(const filepath& location) {
  const std::string& name = location.name();
  const size_t point = name.rfind('.');
  if (point == std::string::npos) return false;
  const auto same = [](char left, char right) {
    return (left >= 'A' && left <= 'Z' ? static_cast<char>(left - 'A' + 'a') : left) == right;
  };
  return std::ranges::equal(std::string_view(name).substr(point), std::string_view(".lnk"), same);
}

bool child_exists(const filepath& parent, const std::string& name) {
  if (!parent.exists()) return false;
  try {
    std::string path = followed(parent).path();
    if (!path.ends_with(system::separator)) path += system::separator;
    return system::read_attributes(path + name).has_value();
  } catch (...) {
    return false;
  }
}

filepath create_file(const filepath& folder, const std::string& name) {
  const std::string path = joined(folder, name);
  if (!system::create_file(path)) throw_cannot_create_file(path);
  return filepath(path);
}

filepath create_folder(const filepath& parent, const std::string& name) {
  const std::string path = joined(parent, name);
  switch (system::create_folder(path)) {
    case system::folder_answer::made:
    case system::folder_answer::already_exists:
      return filepath(path);
    case system::folder_answer::parent_missing:
      throw error::cannot_create_folder("cannot create folder! One or more intermediate directories do not exist!",
                                        path, name);
    case system::folder_answer::failed:
      break;
  }
  throw_cannot_create_folder(path, name);
}

filepath get_or_create_folder(const filepath& parent, const std::string& name) {
  if (!child_exists(parent, name)) return create_folder(parent, name);
  filepath found = followed(filepath(parent, name));
  if (!found.is_folder()) {
    throw error::folder_not_found("expected a folder but the found path refers to a file!", found.path(), found.name());
  }
  return found;
}

filepath create_folder_path(const filepath& parent, const std::string& relative) {
  try {
    filepath last = parent;
    path_tokenizer names(relative, "/\\");
    while (const auto name = names.next()) last = get_or_create_folder(last, std::string(*name));
    return last;
  } catch (const err::exception& failure) {
    halvern::write_to_debugger((std::string(failure.what()) + "\n").c_str());
  } catch (...) {
    // The caller can ask the result whether it exists.
  }
  return {};
}

void append_to_file(const filepath& location, const memory::data& bytes) {
  hdd_file file(location, file_mode::writing, existing_content::keep);
  file.seek(static_cast<int64_t>(file.size()), seek_origin::start);
  constexpr uint64_t most_at_once = 1U << 30;  // the count of a write has 32 bits
  for (uint64_t start = 0; start < bytes.size();) {
    uint32_t done = 0;
    file.write(bytes.bytes() + start, static_cast<uint32_t>(std::min(bytes.size() - start, most_at_once)), &done);
    if (done == 0) return;
    start += done;
  }
}

}  // namespace files
