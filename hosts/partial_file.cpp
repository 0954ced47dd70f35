// MIT License. A file that appears under its name only when it is whole.
#include "hosts/partial_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "hosts/failure.h"

namespace fs = std::filesystem;

static failure unwritable(const std::string& what, int error) {
  return failure(what + " cannot be written: " + std::generic_category().message(error));
}

partial_file::partial_file(const std::string& what, const std::string& path) : what_(what), target_(path) {
  std::error_code error;
  if (fs::exists(target_, error)) target_ = fs::canonical(target_, error);
  if (error) throw unwritable(what_, error.value());
  if (fs::exists(target_) && access(target_.c_str(), W_OK) != 0) throw unwritable(what_, errno);

  partial_ = target_;
  std::string name = ".";
  name.append(target_.filename().string()).append(".").append(std::to_string(getpid())).append(".part");
  partial_.replace_filename(name);
  const int descriptor = open(partial_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
  if (descriptor < 0) throw unwritable(what_, errno);
  close(descriptor);
}

partial_file::~partial_file() {
  if (!partial_.empty()) unlink(partial_.c_str());
}

void partial_file::finish() {
  if (rename(partial_.c_str(), target_.c_str()) != 0) throw unwritable(what_, errno);
  partial_.clear();
}

// Neither needs to be there yet; hard links are found only by what is.
static bool is_same_file(const std::string& path, const std::string& other) {
  std::error_code error;
  if (fs::equivalent(path, other, error)) return true;
  const auto place = fs::weakly_canonical(path, error);
  return !place.empty() && place == fs::weakly_canonical(other, error);
}

void check_place(const std::string& what, const std::string& path, const std::string& other_what,
                 const std::string& other) {
  std::error_code error;
  const auto status = fs::status(path, error);
  if (fs::exists(status) && !fs::is_regular_file(status)) throw failure(what + " is no regular file");
  if (other.empty() || !is_same_file(path, other)) return;
  throw failure(what + " is the " + other_what + " itself: name another file");
}
