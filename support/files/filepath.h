// MIT License. The path of a file or folder.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace files {

// A path with the attributes that the file or folder had when the value was constructed. Paths are UTF-8 and are
// converted to the system's encoding at each system call.
class filepath {
 public:
  static constexpr uint32_t exists_flag = 1;  // the attributes have been read
  static constexpr uint32_t folder_flag = 2;
  static constexpr uint32_t hidden_flag = 4;  // by its attributes, or by a name that begins with a dot

  // Empty: no text, no flags.
  filepath() = default;

  // Throws error::file_path for a path of a separator alone, error::file_not_found when nothing is there.
  explicit filepath(const std::string& path);

  // The same from UTF-16; Windows only.
  explicit filepath(const std::wstring& path);

  // `relative` to `parent`, with `/` between the components; shell links are followed. An empty `relative` gives the
  // parent.
  // Throws error::folder_not_found when the parent doesn't exist, error::cannot_resolve_file for a dead link on the
  // way, error::file_not_found.
  filepath(const filepath& parent, std::string_view relative);

  const std::string& path() const { return path_; }  // as given, in full
  const std::string& name() const { return name_; }  // its last component
  uint32_t flags() const { return flags_; }

  bool exists() const { return (flags_ & exists_flag) != 0; }
  bool is_folder() const { return (flags_ & folder_flag) != 0; }
  bool is_hidden() const { return (flags_ & hidden_flag) != 0; }

 private:
  void split_name();
  void read_attributes();

  std::string path_;
  std::string name_;
  uint32_t flags_ = 0;
};

}  // namespace files
