// MIT License. Checks of saved state.
#include <algorithm>
#include <cmath>

#include "hosts/check/checks.h"

namespace {

constexpr double same_sound_db = -60.0;

void set_random_values(plugin_under_test* plugin, generator* random) {
  for (int index = 0; index < static_cast<int>(plugin->facts().parameters.size()); ++index) {
    const plugin_parameter& parameter = plugin->facts().parameters[static_cast<std::size_t>(index)];
    // Steps exactly, as values between two have no state of their own.
    const double value = uniform(random);
    if (!parameter.is_input) continue;
    plugin->set_parameter(index,
                          parameter.steps > 0 ? below(parameter.steps + 1, random) / double(parameter.steps) : value);
  }
}

// In some formats values reach the sound only with a block.
void take_effect(plugin_under_test* plugin) {
  plugin->activate(usual_rate_hz, usual_block);
  render(plugin, silence(1, usual_block));
  plugin->deactivate();
}

std::size_t size_of(const plugin_state& state) {
  std::size_t size = 0;
  for (const state_part& part : state) size += part.bytes.size();
  return size;
}

// One of the parts that the plug-in reads itself, damaged in a random way.
plugin_state damaged(plugin_state state, generator* random) {
  std::vector<state_part*> parts;
  for (state_part& part : state) {
    if (part.is_opaque) parts.push_back(&part);
  }
  std::vector<uint8_t>& bytes = parts[static_cast<std::size_t>(below(static_cast<int>(parts.size()), random))]->bytes;
  const int size = static_cast<int>(bytes.size());
  switch (below(4, random)) {
    case 0:
      bytes.resize(static_cast<std::size_t>(below(size + 1, random)));
      break;
    case 1:
      for (int count = 1 + below(8, random); count > 0 && size > 0; --count) {
        bytes[static_cast<std::size_t>(below(size, random))] ^= static_cast<uint8_t>(1 << below(8, random));
      }
      break;
    case 2:
      for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(below(256, random));
      break;
    default:
      bytes.insert(bytes.begin() + below(size + 1, random), static_cast<std::size_t>(1 + below(64, random)), 0xFF);
      break;
  }
  return state;
}

}  // namespace

std::string check_state(const check_setting& setting) {
  const auto module = load_plugin_module(setting.format, setting.path);
  if (module->create()->facts().parameters.empty()) throw check_skipped("no parameters to save");
  generator random(setting.seed);
  std::string figures;
  double largest = -300.0;
  for (int turn = 0; turn < 5; ++turn) {
    const generator values = random;
    random.discard(10000);
    const auto first = module->create();
    generator once = values;
    set_random_values(first.get(), &once);
    if (first->facts().programs > 0) {
      first->set_program(turn % first->facts().programs);
      once = values;
      set_random_values(first.get(), &once);
    }
    take_effect(first.get());
    const plugin_state saved = first->save();
    if (saved.empty()) throw check_failed("it has parameters but saves no state");

    const auto second = module->create();
    if (!second->load(saved)) throw check_failed("refuses the state that it has saved");
    for (int index = 0; index < static_cast<int>(first->facts().parameters.size()); ++index) {
      const double expected = first->parameter(index);
      const double restored = second->parameter(index);
      if (std::abs(expected - restored) > 1e-4) {
        throw check_failed("parameter " + std::to_string(index) + " '" +
                           first->facts().parameters[static_cast<std::size_t>(index)].name + "' was " +
                           std::to_string(expected) + " and is " + std::to_string(restored));
      }
    }
    if (second->program() != first->program()) throw check_failed("another program after loading");
    if (second->save() != saved) throw check_failed("saved again, the state is another one");

    // All go through the same from here on. The first half of a second may differ: values are smoothed. A sound of
    // which two copies differ has noise of its own in it, and says nothing about the state.
    const auto third = module->create();
    third->load(saved);
    take_effect(second.get());
    take_effect(third.get());
    for (plugin_under_test* const plugin : {first.get(), second.get(), third.get()}) {
      plugin->activate(usual_rate_hz, usual_block);
    }
    const audio expected = play(first.get(), setting);
    const audio restored = play(second.get(), setting);
    constexpr int settling = 22050;
    const bool is_random = difference_db(restored, play(third.get(), setting), settling) > same_sound_db;
    if (!is_random) largest = std::max(largest, difference_db(expected, restored, settling));
    figures = std::to_string(size_of(saved)) + " bytes";
  }
  figures += ", difference of the sound " + difference_text(largest);
  setting.demand_when_strict(largest <= same_sound_db, "sounds different after loading, by " + difference_text(largest),
                             &figures);
  return figures;
}

std::string check_state_fuzz(const check_setting& setting) {
  loaded_plugin loaded(setting);
  plugin_under_test* const plugin = loaded.plugin.get();
  const plugin_state saved = plugin->save();
  if (std::none_of(saved.begin(), saved.end(), [](const state_part& part) { return part.is_opaque; })) {
    throw check_skipped("the host keeps all of the state");
  }
  plugin->activate(usual_rate_hz, usual_block);
  generator random(setting.seed);
  const audio hiss = noise(std::max(plugin->facts().inputs, 1), usual_block, 0.5F, setting.seed);
  plugin_state empty = saved;
  for (state_part& part : empty) {
    if (part.is_opaque) part.bytes.clear();
  }
  plugin->load(empty);
  int accepted = 0;
  constexpr int turns = 400;
  for (int turn = 0; turn < turns; ++turn) {
    accepted += plugin->load(damaged(saved, &random)) ? 1 : 0;
    if (!is_finite(render(plugin, hiss))) throw check_failed("the sound isn't finite after damaged state");
  }
  if (!plugin->load(saved)) throw check_failed("refuses good state after damaged state");
  expect_plays(plugin, setting, "damaged state");
  std::string figures = std::to_string(turns) + " damaged, " + std::to_string(accepted) + " not refused";
  const plugin_state again = plugin->save();
  setting.demand_when_strict(again == saved, "good state isn't restored completely after damaged state", &figures);
  return figures;
}
