// MIT License. The parameters that every door shows to its host.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

// The first three are the effect's own, by their numbers.
enum door_parameter : int32_t {
  door_chorus,       // 0 or 1
  door_reverb,       // 0 or 1
  door_octave,       // 0 or 1
  door_sound,        // number of a sound, from 0
  door_latch,        // 0 or 1: MIDI notes toggle keys instead of holding them
  door_input,        // an input_choice
  door_output_gain,  // dB
  door_parameter_count
};

// The host's channels that the voice comes from.
enum input_choice : int32_t { input_both, input_left, input_right, input_choice_count };

enum class parameter_kind { on_off, choice, decibels };

struct parameter_description {
  const char* name;    // for people
  const char* symbol;  // for files: a C identifier; never changes
  parameter_kind kind;
  float lowest;
  float highest;
  float initial;  // that of the first program, for what programs have
};

extern const std::array<parameter_description, door_parameter_count> door_parameters;

constexpr int32_t sound_count = 58;
constexpr int32_t program_count = 24;

// Texts of a parameter's whole values; empty outside its range and for decibels.
std::string_view value_name(door_parameter parameter, int32_t value);

// The name that the default bank gives its program; empty outside the 24.
std::string_view program_name(int32_t program);

// The nearest value that the parameter can have. NaN becomes its initial value.
float nearest_value(door_parameter parameter, float value);
