// MIT License. kesrel-plugin-check: plays the host of a plug-in and checks what hosts rely on.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <system_error>

#include "hosts/check/checks.h"
#include "hosts/check/isolated.h"
#include "hosts/check/options.h"
#include "hosts/effect/command_words.h"
#include "hosts/effect/text.h"

namespace fs = std::filesystem;

namespace {

// A folder that is there while the object is.
class empty_folder {
 public:
  empty_folder() {
    const std::string start = (fs::temp_directory_path() / "kesrel-plugin-check-").string();
    for (int number = 0; path_.empty(); ++number) {
      const std::string candidate = start + std::to_string(number);
      if (fs::create_directory(candidate)) path_ = candidate;
    }
  }
  empty_folder(const empty_folder&) = delete;
  empty_folder& operator=(const empty_folder&) = delete;
  ~empty_folder() {
    std::error_code ignored;
    fs::remove_all(path_, ignored);
  }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

using deed = std::function<std::string(const check_setting& setting)>;

verdict run(const check_options& options, const deed& check) {
  const empty_folder home;
  const check_setting setting{options.format, options.path, home.path(), options.seed, options.strict};
  const auto check_safely = [&]() -> verdict {
    try {
      return {verdict_kind::pass, check(setting)};
    } catch (const check_skipped& skipped) {
      return {verdict_kind::skip, on_one_line(skipped.what())};
    } catch (const std::exception& failed) {
      return {verdict_kind::fail, on_one_line(failed.what())};
    }
  };
  if (!options.in_own_process) return check_safely();
  return run_isolated({home.path(), options.seconds, options.verbose}, check_safely);
}

// Whether there is a plug-in at all: without one each check would say so.
void expect_plugin(const check_options& options) {
  const verdict result =
      run(options, [](const check_setting& setting) { return loaded_plugin(setting).plugin->facts().name; });
  if (result.kind == verdict_kind::fail) throw unusable("'" + options.path + "': " + result.text);
}

// Runs the checks that are wanted, and prints a line for each. The number that failed.
int run_checks(const check_options& options) {
  int failed = 0;
  for (const plugin_check& check : all_checks()) {
    const auto& only = options.only;
    if (!only.empty() && std::find(only.begin(), only.end(), check.name) == only.end()) continue;
    const verdict result = run(options, check.run);
    const char* const words[] = {"pass", "FAIL", "skip"};
    std::printf("%s  %-15s %s\n", words[static_cast<int>(result.kind)], check.name, result.text.c_str());
    std::fflush(stdout);
    failed += result.kind == verdict_kind::fail ? 1 : 0;
  }
  return failed;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const auto line = utf8_words(argc, argv);
    const auto options = read_check_options(line.count, line.words);
    if (!options) return 0;
    expect_plugin(*options);
    return run_checks(*options) == 0 ? 0 : 1;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kesrel-plugin-check: %s\n", on_one_line(error.what()).c_str());
    return 2;
  }
}
