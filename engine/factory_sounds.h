// MIT License. The value lists of the factory sounds, made at build time from resources/sounds/factory_sounds.csv.
#pragma once

#include <cstdint>
#include <string_view>

// One text per sound number.
extern const std::string_view factory_sound_texts[];
extern const int32_t factory_sound_text_count;
