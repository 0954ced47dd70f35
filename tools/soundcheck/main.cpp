// MIT License. kesrel-soundcheck: measures the instrument's sounds and compares them with their targets.
#include <algorithm>
#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "hosts/effect/partial_file.h"
#include "hosts/effect/sounds.h"
#include "hosts/effect/text.h"
#include "hosts/report/jobs.h"
#include "tools/soundcheck/figures.h"
#include "tools/soundcheck/names.h"
#include "tools/soundcheck/options.h"
#include "tools/soundcheck/rendering.h"
#include "tools/soundcheck/report.h"
#include "tools/soundcheck/sounds_page.h"
#include "tools/soundcheck/table.h"
#include "tools/soundcheck/targets.h"

namespace {

constexpr int missed_status = 1;
constexpr int failure_status = 2;

std::vector<test_voice> chosen_voices(const soundcheck_options& options) {
  auto voices = read_test_voices(options.resources);
  if (options.voice.empty()) return voices;
  std::erase_if(voices, [&](const test_voice& voice) { return voice.name != options.voice; });
  if (voices.empty()) throw failure("there is no test voice '" + options.voice + "': possible are demo, second, vowel");
  return voices;
}

// Those asked for that exist.
std::vector<sound> chosen_sounds(const soundcheck_options& options, const sound_tables& tables) {
  const auto& all = known_sounds();
  std::vector<sound> chosen;
  std::vector<int> wanted;
  if (!options.sounds.empty()) wanted = parse_numbers(options.sounds, static_cast<int>(all.size()));
  for (const auto& each : all) {
    const bool asked_for = options.sounds.empty() || std::binary_search(wanted.begin(), wanted.end(), each.number);
    if (asked_for && tables.rows.contains(each.number)) chosen.push_back(each);
  }
  return chosen;
}

void print_misses(const std::vector<std::string>& misses) {
  std::printf("\n");
  for (const auto& miss : misses) std::printf("%s\n", on_one_line(miss).c_str());
  std::printf(misses.empty() ? "all targets are met\n" : "targets missed: %zu\n", misses.size());
}

std::vector<program_figures> measured_programs(const soundcheck_options& options,
                                               const std::vector<test_voice>& voices) {
  const auto programs = programs_of(options.module);
  std::vector<program_figures> figures(programs.size());
  for_each_job(programs.size(), options.threads, [&](std::size_t i) {
    figures[i] = measure_program(options.module, static_cast<int>(i), programs[i], voices);
  });
  return figures;
}

void write_file(const std::string& what, const std::string& path, const std::string& content) {
  partial_file file(what + " '" + path + "'", path);
  file.write(content);
  file.finish();
}

// Returns the exit status.
int check(const soundcheck_options& options, const sound_tables& tables) {
  const auto voices = chosen_voices(options);
  const auto chosen = chosen_sounds(options, tables);
  std::vector<sound_figures> sounds(chosen.size());
  for_each_job(chosen.size(), options.threads, [&](std::size_t i) {
    sounds[i] = measure_sound(options.module, chosen[i], tables.rows.at(chosen[i].number), voices);
  });
  find_nearest(&sounds);

  const text_table table = sound_table(sounds, tables);
  std::printf("%s", table.aligned().c_str());
  if (!options.csv.empty()) write_file("table", options.csv, table.csv());
  auto misses = misses_of_sounds(sounds, tables);
  const bool is_complete = options.sounds.empty() && options.voice.empty();
  const auto add = [&](const std::vector<std::string>& more) { misses.insert(misses.end(), more.begin(), more.end()); };
  if (is_complete) {
    add(misses_of_set(sounds, tables));
    add(names_that_values_break(tables));
    add(names_that_figures_break(sounds));
  }
  if (options.programs) {
    const auto programs = measured_programs(options, voices);
    std::printf("\n%s", program_table(programs).aligned().c_str());
    add(misses_of_programs(programs, tables));
  }
  print_misses(misses);
  if (!options.report.empty()) {
    write_report(options.report, options.module, sounds, tables, voices.front(), misses, options.threads);
    std::printf("to listen: %s/index.html\n", on_one_line(options.report).c_str());
  }
  return misses.empty() ? 0 : missed_status;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    soundcheck_options options;
    options.resources = KESREL_RESOURCES;
    if (read_command_line(argc, argv, &options) == command_line::done) return 0;
    const auto tables = read_sound_tables(options.resources);
    if (options.write_docs.empty()) return check(options, tables);
    write_file("page", options.write_docs, sounds_page(tables));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "kesrel-soundcheck: %s\n", on_one_line(error.what()).c_str());
    return failure_status;
  }
}
