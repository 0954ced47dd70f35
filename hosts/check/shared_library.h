// MIT License. A shared library that is unloaded again.
#pragma once

#include <string>

class shared_library {
 public:
  //   path     absolute, in UTF-8
  //   throws   unusable (plugin_under_test.h)
  explicit shared_library(const std::string& path);
  ~shared_library();
  shared_library(const shared_library&) = delete;
  shared_library& operator=(const shared_library&) = delete;

  // Null when there is no such name.
  void* symbol(const char* name) const;

  template <typename Function>
  Function function(const char* name) const {
    return reinterpret_cast<Function>(symbol(name));
  }

  // The system's own handle, which an entry function may ask for.
  void* handle() const { return handle_; }

 private:
  void* handle_;
};
