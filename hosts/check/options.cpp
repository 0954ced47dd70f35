// MIT License. The command line of kesrel-plugin-check.
#include "hosts/check/options.h"

#include <cstdio>
#include <filesystem>
#include <map>

#include <CLI/CLI.hpp>

#include "hosts/check/checks.h"
#include "hosts/effect/paths.h"

namespace fs = std::filesystem;

namespace {

const char* const help_footer =
    R"(Plays the host of one plug-in and checks what hosts rely on. Each check is a line: pass, FAIL or skip, its name, and
figures or the reason. On Linux each check has a process and an empty home of its own, so a crash is a failure too.

Without --format the name decides: .lv2 and .vst3 folders, .clap files, else VST 2.4.

The window's check needs an X server, on Linux; without one it is left out.

Exit status: 0 no check failed, 1 some did, 2 the plug-in can't be loaded or the command line isn't valid.)";

const std::map<std::string, plugin_format> formats = {{"vst2", plugin_format::vst2},
                                                      {"lv2", plugin_format::lv2},
                                                      {"clap", plugin_format::clap},
                                                      {"vst3", plugin_format::vst3}};

plugin_format format_of(const std::string& path) {
  std::string ending = path_of(path).extension().string();
  if (!ending.empty()) ending.erase(0, 1);
  const auto known = formats.find(ending);
  return known == formats.end() ? plugin_format::vst2 : known->second;
}

// Without separators at the end, which would hide a folder's name.
std::string absolute(const std::string& path) {
  fs::path place = fs::absolute(path_of(path)).lexically_normal();
  if (!place.has_filename()) place = place.parent_path();
  const std::u8string text = place.u8string();
  return {text.begin(), text.end()};
}

void list_checks() {
  for (const plugin_check& check : all_checks()) std::printf("%-15s %s\n", check.name, check.meaning);
}

}  // namespace

std::optional<check_options> read_check_options(int argc, const char* const* argv) {
  check_options options;
  CLI::App app("Checks a plug-in as its host.", "kesrel-plugin-check");
  app.footer(help_footer);
  std::string format;
  bool is_list_wanted = false;
  std::vector<std::string> names;
  for (const plugin_check& check : all_checks()) names.emplace_back(check.name);
  app.add_option("path", options.path, "The plug-in: a file, or the folder of a bundle");
  app.add_option("--format", format, "vst2, lv2, clap or vst3")->check(CLI::IsMember(formats));
  app.add_option("--only", options.only, "Run this check only; may be repeated")
      ->type_name("CHECK")
      ->allow_extra_args(false)
      ->check(CLI::IsMember(names));
  app.add_option("--seed", options.seed, "For all that is random, default 1");
  app.add_option("--seconds", options.seconds, "Time for each check, default 120")->check(CLI::PositiveNumber);
  app.add_flag("--strict", options.strict, "Also fail what the formats don't forbid: see docs/plugin-check.md");
  app.add_flag("--verbose", options.verbose, "Show what the plug-in prints");
  app.add_flag("--no-fork{false}", options.in_own_process, "Run the checks in this process, for a debugger");
  app.add_flag("--list", is_list_wanted, "Print the checks and leave");
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    std::fputs(app.help().c_str(), stdout);
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    throw unusable(error.what());
  }
  if (is_list_wanted) {
    list_checks();
    return std::nullopt;
  }
  if (options.path.empty()) throw unusable("which plug-in? (--help shows the options)");
  options.path = absolute(options.path);
  if (!fs::exists(path_of(options.path))) throw unusable("there is no '" + options.path + "'");
  options.format = format.empty() ? format_of(options.path) : formats.at(format);
  return options;
}
