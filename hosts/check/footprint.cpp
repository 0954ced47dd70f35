// MIT License.
#include "hosts/check/footprint.h"

#include <xmmintrin.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace fs = std::filesystem;

namespace {

// Bits of MXCSR. The six lowest are exceptions that have occurred, which any computation sets.
constexpr unsigned noted_exceptions = 0x003F;
constexpr unsigned flush_to_zero = 0x8000;
constexpr unsigned denormals_are_zero = 0x0040;

// Names the items of `after` that `before` doesn't have.
void append_new(const std::string& what, const std::vector<std::string>& before, const std::vector<std::string>& after,
                std::vector<std::string>* result) {
  std::vector<std::string> added;
  std::set_difference(after.begin(), after.end(), before.begin(), before.end(), std::back_inserter(added));
  for (const std::string& item : added) result->emplace_back(what).append(" ").append(item);
}

}  // namespace

std::vector<std::string> differences(const process_footprint& before, const process_footprint& after) {
  std::vector<std::string> result;
  append_new("signal handler changed:", before.signals, after.signals, &result);
  append_new("environment changed:", before.environment, after.environment, &result);
  append_new("environment lost:", after.environment, before.environment, &result);
  append_new("left open:", before.open_files, after.open_files, &result);
  if (after.threads > before.threads) {
    result.push_back(std::to_string(after.threads - before.threads) + " threads left running");
  }
  if (before.floating_point != after.floating_point) result.push_back("floating-point mode changed");
  if (before.locale != after.locale) result.push_back("locale changed to " + after.locale);
  if (before.folder != after.folder) result.push_back("current folder changed to " + after.folder);
  return result;
}

std::vector<std::string> files_in(const std::string& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(folder)) {
    names.push_back(fs::relative(entry.path(), folder).string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

unsigned floating_point_mode() {
  return _mm_getcsr() & ~noted_exceptions;
}

void set_floating_point_mode(unsigned mode) {
  _mm_setcsr(mode);
}

unsigned flushing_mode() {
  return floating_point_mode() | flush_to_zero | denormals_are_zero;
}
