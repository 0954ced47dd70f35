// MIT License. Checks of parameters, programs and MIDI.
#include <algorithm>
#include <cmath>
#include <limits>

#include "hosts/check/checks.h"

namespace {

// The indices of those that a host may set.
std::vector<int> inputs_of(const plugin_facts& facts) {
  std::vector<int> indices;
  for (int index = 0; index < static_cast<int>(facts.parameters.size()); ++index) {
    if (facts.parameters[static_cast<std::size_t>(index)].is_input) indices.push_back(index);
  }
  if (indices.empty()) throw check_skipped("no parameters");
  return indices;
}

audio short_noise(const plugin_under_test& plugin, const check_setting& setting) {
  return noise(std::max(plugin.facts().inputs, 1), usual_block, 0.5F, setting.seed);
}

// Sets all parameters before each of some blocks, to what `value_of` gives.
template <typename Value>
bool stays_finite(plugin_under_test* plugin, const check_setting& setting, int blocks, const Value& value_of) {
  const auto indices = inputs_of(plugin->facts());
  const audio hiss = short_noise(*plugin, setting);
  bool is_finite_so_far = true;
  for (int block = 0; block < blocks; ++block) {
    for (const int index : indices) plugin->set_parameter(index, value_of());
    is_finite_so_far = is_finite(render(plugin, hiss)) && is_finite_so_far;
    plugin->parameter_text(indices[static_cast<std::size_t>(block) % indices.size()]);
  }
  return is_finite_so_far;
}

void add(uint32_t frame, int status, int first, int second, std::vector<midi_message>* messages) {
  messages->push_back(
      {frame, {static_cast<uint8_t>(status), static_cast<uint8_t>(first), static_cast<uint8_t>(second)}});
}

}  // namespace

std::string check_parameters(const check_setting& setting) {
  const loaded_plugin loaded(setting);
  plugin_under_test* const plugin = loaded.plugin.get();
  const auto indices = inputs_of(plugin->facts());
  if (!plugin->facts().answers_values) throw check_skipped("in this format the host keeps the values");
  plugin->activate(usual_rate_hz, usual_block);
  const audio hiss = short_noise(*plugin, setting);
  for (const int index : indices) {
    const plugin_parameter& parameter = plugin->facts().parameters[static_cast<std::size_t>(index)];
    for (const double value : {0.0, 1.0, 0.5, 0.25}) {
      plugin->set_parameter(index, value);
      render(plugin, hiss);
      const double kept = plugin->parameter(index);
      const std::string which = "parameter " + std::to_string(index) + " '" + parameter.name + "' ";
      if (!(kept >= 0.0 && kept <= 1.0)) throw check_failed(which + "answers " + std::to_string(kept));
      // Between the ends a switch or a list may round.
      if ((value == 0.0 || value == 1.0) && std::abs(kept - value) > 0.01) {
        throw check_failed(which + "is " + std::to_string(kept) + " after " + std::to_string(value));
      }
      plugin->set_parameter(index, kept);
      render(plugin, hiss);
      if (std::abs(plugin->parameter(index) - kept) > 1e-5)
        throw check_failed(which + "drifts when set to its own value");
    }
  }
  return std::to_string(indices.size()) + " parameters";
}

std::string check_parameter_fuzz(const check_setting& setting) {
  const loaded_plugin loaded(setting);
  loaded.plugin->activate(usual_rate_hz, usual_block);
  generator random(setting.seed);
  if (!stays_finite(loaded.plugin.get(), setting, 500, [&] { return uniform(&random); })) {
    throw check_failed("the sound isn't finite");
  }
  return "500 blocks";
}

std::string check_odd_values(const check_setting& setting) {
  const loaded_plugin loaded(setting);
  plugin_under_test* const plugin = loaded.plugin.get();
  plugin->activate(usual_rate_hz, usual_block);
  generator random(setting.seed);
  const double odd[] = {
      -1.0, 2.0, 1e30, -1e30, std::numeric_limits<double>::infinity(), std::numeric_limits<double>::quiet_NaN()};
  const bool is_safe =
      stays_finite(plugin, setting, 100, [&] { return odd[static_cast<std::size_t>(below(6, &random))]; });
  stays_finite(plugin, setting, 10, [&] { return uniform(&random); });
  std::string figures;
  setting.demand_when_strict(is_safe, "the sound isn't finite", &figures);
  if (is_safe) expect_plays(plugin, setting, "values out of range");
  return figures;
}

std::string check_programs(const check_setting& setting) {
  const loaded_plugin loaded(setting);
  plugin_under_test* const plugin = loaded.plugin.get();
  const int count = plugin->facts().programs;
  if (count == 0) throw check_skipped("the interface offers none");
  plugin->activate(usual_rate_hz, usual_block);
  int silent = 0;
  for (int program = 0; program < count; ++program) {
    plugin->set_program(program);
    if (plugin->program() != program) throw check_failed("program " + std::to_string(program) + " isn't taken");
    if (plugin->program_name().empty()) throw check_failed("program " + std::to_string(program) + " has no name");
    const audio sound = play(plugin, setting);
    if (!is_finite(sound)) throw check_failed("program " + std::to_string(program) + ": sound isn't finite");
    if (peak(sound) < 1e-5) ++silent;
  }
  for (const int odd : {-1, count, 1 << 30}) plugin->set_program(odd);
  expect_plays(plugin, setting, "programs that don't exist");
  return std::to_string(count) + " programs, " + std::to_string(silent) + " silent";
}

std::string check_midi(const check_setting& setting) {
  const loaded_plugin loaded(setting);
  plugin_under_test* const plugin = loaded.plugin.get();
  if (!plugin->facts().takes_midi) throw check_skipped("takes no MIDI");
  plugin->activate(usual_rate_hz, usual_block);
  generator random(setting.seed);
  const audio hiss = short_noise(*plugin, setting);
  const auto send = [&](const std::vector<midi_message>& messages, const std::string& what) {
    block_plan plan;
    plan.first_events = messages;
    if (!is_finite(render(plugin, hiss, plan))) throw check_failed("the sound isn't finite after " + what);
  };
  for (int note = 0; note < 128; ++note) {
    std::vector<midi_message> messages;
    const int channel = below(16, &random);
    add(0, 0x90 | channel, note, 1 + below(127, &random), &messages);
    add(usual_block / 2, 0xB0 | channel, 64, below(128, &random), &messages);
    add(usual_block - 1, 0x80 | channel, note, 0, &messages);
    send(messages, "note " + std::to_string(note));
  }
  std::vector<midi_message> flood;
  for (uint32_t i = 0; i < 4096; ++i) {
    // Any status byte of a channel message, in order of time.
    add(i * usual_block / 4096, 0x80 + below(0x70, &random), below(128, &random), below(128, &random), &flood);
  }
  for (int turn = 0; turn < 20; ++turn) send(flood, "4096 messages in a block");
  std::vector<midi_message> ending;
  for (int channel = 0; channel < 16; ++channel) {
    for (const int controller : {64, 121, 123, 120}) add(0, 0xB0 | channel, controller, 0, &ending);
  }
  send(ending, "all notes off");
  expect_plays(plugin, setting, "all notes off");
  return "128 notes, 20 times 4096 messages";
}
