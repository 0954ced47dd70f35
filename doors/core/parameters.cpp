// MIT License.
#include "doors/core/parameters.h"

#include <algorithm>
#include <cmath>

#include "plugin/factory_catalogue.h"

// clang-format off
const std::array<parameter_description, door_parameter_count> door_parameters = {{
    // name         symbol         kind                      lowest  highest          initial
    {"Chorus",      "chorus",      parameter_kind::on_off,     0,    1,                  0},
    {"Reverb",      "reverb",      parameter_kind::on_off,     0,    1,                  0},
    {"Octave",      "octave",      parameter_kind::on_off,     0,    1,                  1},
    {"Sound",       "sound",       parameter_kind::choice,     0,    sound_count - 1,    0},
    {"Latch",       "latch",       parameter_kind::on_off,     0,    1,                  0},
    {"Input",       "input",       parameter_kind::choice,     0,    input_choice_count - 1,  input_both},
    {"Output Gain", "output_gain", parameter_kind::decibels, -60,   12,                  0},
}};
// clang-format on

namespace {

constexpr std::string_view switch_names[] = {"Off", "On"};
constexpr std::string_view input_names[input_choice_count] = {"Both", "Left", "Right"};

// Finer than anybody hears, and coarse enough that 0 dB is still 0 after a host has kept it as a share of the range.
constexpr float steps_per_decibel = 100;

std::string_view sound_name(int32_t number) {
  for (const factory_category& category : factory_categories()) {
    for (const factory_sound& sound : category.sounds) {
      if (sound.number == number) return sound.name;
    }
  }
  return {};
}

}  // namespace

std::string_view value_name(door_parameter parameter, int32_t value) {
  const parameter_description& description = door_parameters[static_cast<size_t>(parameter)];
  if (static_cast<float>(value) < description.lowest || static_cast<float>(value) > description.highest) return {};
  if (parameter == door_sound) return sound_name(value);
  if (parameter == door_input) return input_names[value];
  if (description.kind == parameter_kind::on_off) return switch_names[value];
  return {};
}

std::string_view program_name(int32_t program) {
  const auto programs = factory_programs();
  if (program < 0 || static_cast<size_t>(program) >= programs.size()) return {};
  return programs[static_cast<size_t>(program)].name;
}

float nearest_value(door_parameter parameter, float value) {
  const parameter_description& description = door_parameters[static_cast<size_t>(parameter)];
  if (std::isnan(value)) return description.initial;
  const float limited = std::clamp(value, description.lowest, description.highest);
  if (description.kind != parameter_kind::decibels) return std::round(limited);
  return std::round(limited * steps_per_decibel) / steps_per_decibel + 0.0F;  // never the negative zero
}
