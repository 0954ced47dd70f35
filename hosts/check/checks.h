// MIT License. What is checked of a plug-in.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "hosts/check/audio.h"
#include "hosts/check/plugin_under_test.h"

// Ends a check with the reason.
struct check_failed : std::runtime_error {
  using std::runtime_error::runtime_error;
};
struct check_skipped : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// What a check works with.
struct check_setting {
  plugin_format format = plugin_format::vst2;
  std::string path;  // absolute
  std::string home;  // empty at first; a plug-in finds it as the user's home
  uint64_t seed = 1;
  // Also fails what the formats don't forbid but a careful plug-in avoids: see docs/plugin-check.md.
  bool strict = false;

  // Ends the check when strict; otherwise `note` joins the figures.
  void demand_when_strict(bool holds, const std::string& note, std::string* figures) const;
};

struct plugin_check {
  const char* name;
  const char* meaning;  // one line for --list
  // Returns figures for the report; throws check_failed or check_skipped.
  std::string (*run)(const check_setting& setting);
};

// In the order in which they run: the later ones rely on what the earlier ones have shown.
std::span<const plugin_check> all_checks();

// A module and its instances, in the order in which they must end.
struct loaded_plugin {
  explicit loaded_plugin(const check_setting& setting);
  std::unique_ptr<plugin_module> module;
  std::unique_ptr<plugin_under_test> plugin;
};

// Words that several checks use.
constexpr double usual_rate_hz = 44100.0;
constexpr int usual_block = 512;

// A chord for plug-ins that have no input and need one to sound; empty for others.
std::vector<midi_message> chord_for(const plugin_facts& facts);
// One second of sound from the active plug-in, beginning with the chord.
audio play(plugin_under_test* plugin, const check_setting& setting, double rate_hz = usual_rate_hz,
           block_plan plan = {});
// A fresh instance, played for a second.
audio play_fresh(plugin_module* module, const check_setting& setting, block_plan plan = {},
                 int largest_block = usual_block, double rate_hz = usual_rate_hz);
// Fails unless the active plug-in still plays finite sound after what has been done to it.
void expect_plays(plugin_under_test* plugin, const check_setting& setting, const std::string& after_what);

// The checks, by file.
std::string check_scan(const check_setting& setting);
std::string check_description(const check_setting& setting);
std::string check_many_instances(const check_setting& setting);

std::string check_signals(const check_setting& setting);
std::string check_repeats(const check_setting& setting);
std::string check_in_place(const check_setting& setting);
std::string check_block_sizes(const check_setting& setting);
std::string check_rates(const check_setting& setting);
std::string check_latency(const check_setting& setting);
std::string check_float_mode(const check_setting& setting);
std::string check_calls_in_block(const check_setting& setting);

std::string check_parameters(const check_setting& setting);
std::string check_parameter_fuzz(const check_setting& setting);
std::string check_odd_values(const check_setting& setting);
std::string check_programs(const check_setting& setting);
std::string check_midi(const check_setting& setting);

std::string check_state(const check_setting& setting);
std::string check_state_fuzz(const check_setting& setting);

std::string check_threads(const check_setting& setting);

std::string check_window(const check_setting& setting);
