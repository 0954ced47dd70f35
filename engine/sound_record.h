// MIT License. The sound that an engine holds, and the text form that sounds come in.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "engine/sound_values.h"

// The longest value list that is accepted. The engine uses the first 37 values and keeps the rest.
constexpr int32_t sound_record_capacity = 512;

struct sound_record {
  int32_t number = -1;  // the sound whose values these are, -1 for none
  std::array<float, sound_record_capacity> values{};
};

// Reads the numbers of `text`, separated by commas or semicolons, into the first of `values`.
//   returns   how many there are: one more than there are separators. When they don't fit, `values` stay as they were.
//             An empty token reads 0.0, and the token that follows it is then stepped over; numbers beyond the text's
//             end are 0.0
//   numbers   decimal with an optional exponent, whatever the process's locale; what isn't a number reads 0.0
//   audio     no heap
int32_t parse_value_list(std::string_view text, std::span<float> values);

// Parses `text` into `record` under `number`.
//   returns   0; 1 for a list of more than 512 values, and `record` stays as it was. A list shorter than the record
//             leaves the later values as they were
int32_t sound_record_take(int32_t number, std::string_view text, sound_record* record);

// The text of a factory sound, or an empty view when the number has none.
std::string_view sound_text(int32_t number);
