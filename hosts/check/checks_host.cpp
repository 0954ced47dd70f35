// MIT License. Checks of a plug-in as a guest in the host's process.
#include <chrono>
#include <cmath>
#include <thread>

#include "hosts/check/checks.h"
#include "hosts/check/footprint.h"

namespace {

// The footprint once threads that are ending have ended, after a second at most.
process_footprint settled_footprint(const process_footprint& before) {
  process_footprint now = footprint_now();
  for (int turn = 0; turn < 100 && !differences(before, now).empty(); ++turn) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    now = footprint_now();
  }
  return now;
}

std::string joined(const std::vector<std::string>& texts) {
  std::string result;
  for (const std::string& text : texts) result += (result.empty() ? "" : "; ") + text;
  return result;
}

}  // namespace

std::string check_scan(const check_setting& setting) {
  const process_footprint before = footprint_now();
  std::string name;
  {
    const loaded_plugin loaded(setting);
    name = loaded.plugin->facts().name;
    for (int index = 0; index < static_cast<int>(loaded.plugin->facts().parameters.size()); ++index) {
      loaded.plugin->parameter_text(index);
    }
  }
  const auto changes = differences(before, settled_footprint(before));
  if (!changes.empty()) throw check_failed(joined(changes));
  if (!setting.home.empty()) {
    const auto files = files_in(setting.home);
    if (!files.empty()) throw check_failed("written to the home: " + joined(files));
  }
  return name;
}

std::string check_description(const check_setting& setting) {
  const loaded_plugin loaded(setting);
  const plugin_facts& facts = loaded.plugin->facts();
  if (facts.name.empty()) throw check_failed("it has no name");
  if (facts.outputs <= 0) throw check_failed("it has no outputs");
  for (int index = 0; index < static_cast<int>(facts.parameters.size()); ++index) {
    const plugin_parameter& parameter = facts.parameters[static_cast<std::size_t>(index)];
    const std::string which = "parameter " + std::to_string(index) + " '" + parameter.name + "' ";
    if (parameter.name.empty()) throw check_failed(which + "has no name");
    if (!(parameter.initial >= 0.0 && parameter.initial <= 1.0)) {
      throw check_failed(which + "has a default outside of its range");
    }
    const double value = loaded.plugin->parameter(index);
    if (parameter.is_input && !(value >= 0.0 && value <= 1.0))
      throw check_failed(which + "begins outside of its range");
  }
  return std::to_string(facts.inputs) + " in, " + std::to_string(facts.outputs) + " out, " +
         std::to_string(facts.parameters.size()) + " parameters, " + std::to_string(facts.programs) + " programs" +
         (facts.takes_midi ? ", MIDI" : "") + (facts.has_window ? ", window" : "");
}

std::string check_many_instances(const check_setting& setting) {
  const auto module = load_plugin_module(setting.format, setting.path);
  const auto use_one = [&] {
    const auto plugin = module->create();
    plugin->activate(usual_rate_hz, usual_block);
    render(plugin.get(), silence(1, 2048));
  };
  use_one();  // what is made once and kept
  const process_footprint before = footprint_now();
  for (int count = 0; count < 100; ++count) use_one();
  const auto changes = differences(before, settled_footprint(before));
  if (!changes.empty()) throw check_failed(joined(changes));
  return "100";
}
