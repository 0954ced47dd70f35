// MIT License. The list of checks, and words that several of them use.
#include "hosts/check/checks.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::array<plugin_check, 20> the_checks = {{
    {"scan", "loading, asking and unloading leaves nothing behind in the process or in the home", check_scan},
    {"describe", "names, ranges, defaults and texts make sense", check_description},
    {"instances", "a hundred instances come and go without leaving files or threads", check_many_instances},
    {"signals", "silence, noise, +40 dB, denormals, NaN and infinity in; finite sound out, then and afterwards",
     check_signals},
    {"repeats", "two instances give the same sound, and one does after a pause", check_repeats},
    {"in-place", "the same buffers for input and output change nothing", check_in_place},
    {"block-sizes", "blocks of 1 to 16384 samples, changing ones and empty ones", check_block_sizes},
    {"rates", "12 rates from 8 to 768 kHz, and one after another in the same instance", check_rates},
    {"latency", "the reported latency is the measured one at 6 rates", check_latency},
    {"float-mode", "the host's rounding and flushing are as before after each block", check_float_mode},
    {"calls", "no heap, lock, wait or file in ordinary blocks", check_calls_in_block},
    {"parameters", "each value is kept, at both ends and between", check_parameters},
    {"parameter-fuzz", "random values in each block", check_parameter_fuzz},
    {"odd-values", "parameters beyond their range and NaN", check_odd_values},
    {"programs", "each program can be chosen and plays", check_programs},
    {"midi", "all notes, controllers, bends, and 4096 messages in a block", check_midi},
    {"state", "saved state restores parameters, sound and its own bytes", check_state},
    {"state-fuzz", "shortened, altered, random and empty state", check_state_fuzz},
    {"threads", "state, parameters and eight instances while other threads play", check_threads},
    {"window", "50 times opened and closed, also while playing", check_window},
}};

}  // namespace

void check_setting::demand_when_strict(bool holds, const std::string& note, std::string* figures) const {
  if (holds) return;
  if (strict) throw check_failed(note);
  *figures += (figures->empty() ? "" : "; ") + note;
}

std::span<const plugin_check> all_checks() {
  return the_checks;
}

loaded_plugin::loaded_plugin(const check_setting& setting)
    : module(load_plugin_module(setting.format, setting.path)), plugin(module->create()) {}

std::vector<midi_message> chord_for(const plugin_facts& facts) {
  if (facts.inputs > 0 || !facts.takes_midi) return {};
  return {{0, {0x90, 60, 100}}, {0, {0x90, 64, 100}}, {0, {0x90, 67, 100}}};
}

audio play(plugin_under_test* plugin, const check_setting& setting, double rate_hz, block_plan plan) {
  plan.first_events = chord_for(plugin->facts());
  return render(plugin, voice(std::max(plugin->facts().inputs, 1), 1.0, rate_hz, setting.seed), plan);
}

audio play_fresh(plugin_module* module, const check_setting& setting, block_plan plan, int largest_block,
                 double rate_hz) {
  const auto plugin = module->create();
  plugin->activate(rate_hz, largest_block);
  return play(plugin.get(), setting, rate_hz, std::move(plan));
}

void expect_plays(plugin_under_test* plugin, const check_setting& setting, const std::string& after_what) {
  if (!is_finite(play(plugin, setting))) throw check_failed("the sound isn't finite after " + after_what);
}
