// MIT License.
#include <clocale>
#include <csignal>

#include <algorithm>
#include <filesystem>
#include <sstream>

#include "hosts/check/footprint.h"

extern char** environ;  // NOLINT(readability-redundant-declaration): not every system's header has it

namespace fs = std::filesystem;

namespace {

std::string text_of(int number, const struct sigaction& action) {
  std::ostringstream text;
  text << "signal " << number << ", handler " << reinterpret_cast<void*>(action.sa_handler) << ", flags "
       << action.sa_flags;
  return text.str();
}

}  // namespace

process_footprint footprint_now() {
  process_footprint now;
  for (int number = 1; number < NSIG; ++number) {
    struct sigaction action {};
    if (sigaction(number, nullptr, &action) == 0) now.signals.push_back(text_of(number, action));
  }
  for (char** variable = environ; *variable != nullptr; ++variable) now.environment.emplace_back(*variable);
  std::error_code ignored;
  for (const auto& file : fs::directory_iterator("/proc/self/fd", ignored)) {
    const fs::path target = fs::read_symlink(file.path(), ignored);
    // The folder that is being read has a descriptor too.
    if (!target.string().ends_with("/fd")) now.open_files.push_back(target.string());
  }
  for ([[maybe_unused]] const auto& thread : fs::directory_iterator("/proc/self/task", ignored)) ++now.threads;
  now.floating_point = std::to_string(floating_point_mode());
  now.locale = std::setlocale(LC_ALL, nullptr);
  now.folder = fs::current_path(ignored).string();
  for (auto* list : {&now.signals, &now.environment, &now.open_files}) std::sort(list->begin(), list->end());
  return now;
}
