// MIT License.
#include "hosts/effect/partial_file.h"

#include <system_error>

#include "hosts/effect/paths.h"
#include "hosts/effect/text.h"

namespace fs = std::filesystem;

fs::path end_of_links(fs::path path) {
  constexpr int most_links = 40;  // as many as Linux follows
  std::error_code error;
  for (int i = 0; i < most_links && fs::is_symlink(path, error); ++i) {
    path = path.parent_path() / fs::read_symlink(path, error);
  }
  return path;
}

namespace {

// Neither file has to exist. Hard links are recognised only when both do.
bool is_same_file(const std::string& path, const std::string& other) {
  std::error_code error;
  if (fs::equivalent(path_of(path), path_of(other), error)) return true;
  // Of a relative path whose first part doesn't exist, weakly_canonical would leave the folder out.
  const auto place_of = [&](const std::string& name) {
    return fs::weakly_canonical(fs::absolute(end_of_links(path_of(name)), error), error);
  };
  const auto place = place_of(path);
  return !place.empty() && place == place_of(other);
}

}  // namespace

void check_target(const std::string& what, const std::string& path, const std::string& other_what,
                  const std::string& other) {
  std::error_code error;
  const auto status = fs::status(path_of(path), error);
  if (fs::exists(status) && !fs::is_regular_file(status)) throw failure(what + " is no regular file");
  if (other.empty() || !is_same_file(path, other)) return;
  throw failure(what + " is the " + other_what + " itself: name another file");
}
