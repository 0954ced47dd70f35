// MIT License. The command line of kesrel-soundcheck.
#include "tools/soundcheck/options.h"

#include <charconv>
#include <set>

#include <CLI/CLI.hpp>

#include "hosts/effect/text.h"

namespace {

constexpr const char* footer =
    R"(Renders each sound through the module with three voices, on a chord and on a single key, with and without chorus and
reverb, measures what comes out, and prints a table and what misses its target. docs/measures.md explains the figures.

Exit status: 0 all targets are met, 1 some are missed, 2 not done, with the reason on standard error.)";

}  // namespace

command_line read_command_line(int argc, const char* const* argv, soundcheck_options* options) {
  CLI::App app("Measures the instrument's sounds and compares them with their targets", "kesrel-soundcheck");
  app.set_help_flag("-h,--help", "Print this help and leave");
  app.footer(footer);
  app.add_option("--sounds", options->sounds, "Sounds to check, default all")->type_name("0,5-9");
  app.add_option("--voice", options->voice, "The only voice to use: demo, second or vowel")->type_name("NAME");
  app.add_flag("--programs", options->programs, "Check the module's programs as well");
  app.add_option("--module", options->module, "The module to load, default KesrelVocoder4ME.so beside this program")
      ->type_name("FILE");
  app.add_option("--resources", options->resources,
                 "Folder of the tables and voices, default the one that the program was built with")
      ->type_name("DIR");
  app.add_option("--csv", options->csv, "Write the table to a file, too")->type_name("FILE");
  app.add_option("--report", options->report, "Write a page to listen through, with sounds and spectrograms")
      ->type_name("DIR");
  app.add_option("--write-docs", options->write_docs, "Write the page about all sounds, and do nothing else")
      ->type_name("FILE");
  app.add_option("--threads", options->threads, "Sounds to check at a time, default as many as there are cores")
      ->type_name("N")
      ->check(CLI::Range(1, 256));
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& asked) {
    app.exit(asked);
    return command_line::done;
  } catch (const CLI::ParseError& error) {
    throw failure(std::string(error.what()) + "; --help tells what is possible");
  }
  return command_line::check;
}

std::vector<int> parse_numbers(const std::string& list, int end) {
  const auto number_in = [&](const std::string& text) {
    int number = 0;
    const auto [rest, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc{} && rest == text.data() + text.size() && number >= 0 && number < end) return number;
    throw failure("'" + list + "' is no list of numbers from 0 to " + std::to_string(end - 1) + " such as 0,5-9");
  };
  std::set<int> numbers;
  for (const auto& item : split(list, ',')) {
    const auto dash = item.find('-');
    const int first = number_in(item.substr(0, dash));
    const int last = dash == std::string::npos ? first : number_in(item.substr(dash + 1));
    if (last < first) throw failure("'" + item + "' is no range of numbers");
    for (int number = first; number <= last; ++number) numbers.insert(number);
  }
  return {numbers.begin(), numbers.end()};
}
