// MIT License. The root of all exceptions that this code throws.
#pragma once

#include <string>
#include <utility>

namespace err {

// Stands apart from std::exception: a handler for one does not catch the other.
class exception {
 public:
  explicit exception(std::string message) : text(std::move(message)) {}
  exception(const exception&) = default;
  exception& operator=(const exception&) = default;
  virtual ~exception() = default;

  virtual const char* what() const { return text.c_str(); }

 protected:
  std::string text;
};

// What only running shows: a missing file, a foreign host, damaged data. Making one logs its text as tracing.
class runtime_error : public exception {
 public:
  explicit runtime_error(const std::string& message);
};

// A broken precondition.
class logic_error : public exception {
 public:
  using exception::exception;
};

}  // namespace err
