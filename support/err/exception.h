// MIT License. The root of all exceptions that this code throws.
#pragma once

#include <string>
#include <utility>

namespace err {

// Not derived from std::exception: a handler for one does not catch the other.
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

// A failure at run time: a missing file, an unknown host, damaged data. Constructing one logs its text as tracing.
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
