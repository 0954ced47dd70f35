// MIT License. A module that a test loads, as a host does.
#pragma once

#include <string>

class loaded_module {
 public:
  // Throws std::runtime_error when it can't be loaded.
  explicit loaded_module(const std::string& path);
  // Unloads it, unless it keeps itself.
  ~loaded_module();
  loaded_module(const loaded_module&) = delete;
  loaded_module& operator=(const loaded_module&) = delete;

  // Null when the module exports no such name.
  void* symbol(const char* name) const;

 private:
  void* handle_;
};
