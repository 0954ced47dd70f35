// MIT License. Errors of files and folders.
#pragma once

#include <cstdint>
#include <string>

#include "support/err/exception.h"

namespace files::error {

// Its text is the message, followed by a line for the path and one for the name unless they are empty.
class file : public err::runtime_error {
 public:
  file(const std::string& message, const std::string& path, const std::string& name);

  const std::string& path() const { return path_; }
  const std::string& name() const { return name_; }

 protected:
  //   last_line   ends the text
  file(const std::string& message, const std::string& path, const std::string& name, const std::string& last_line);

 private:
  std::string path_;
  std::string name_;
};

class file_path : public file {
 public:
  //   error_id   the system's error number, shown in a last line unless it is 0
  file_path(const std::string& message, const std::string& path, const std::string& name, int32_t error_id = 0);

  int32_t error_id() const { return error_id_; }

 private:
  int32_t error_id_;
};

class file_not_found : public file_path {
 public:
  using file_path::file_path;
};

class folder_not_found : public file_path {
 public:
  using file_path::file_path;
};

class cannot_resolve_file : public file_path {
 public:
  using file_path::file_path;
};

class cannot_create_folder : public file_path {
 public:
  using file_path::file_path;
};

class duplicate_name : public file_path {
 public:
  using file_path::file_path;
};

class cannot_open_file : public file {
 public:
  using file::file;
};

class cannot_write_to_file : public file {
 public:
  using file::file;
};

class not_enough_disk_space : public file {
 public:
  using file::file;
};

}  // namespace files::error
