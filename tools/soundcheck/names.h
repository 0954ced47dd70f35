// MIT License. What the sounds' names promise.
#pragma once

#include <string>
#include <vector>

#include "tools/soundcheck/figures.h"
#include "tools/soundcheck/sound_tables.h"

// A line for each promise that the values of a sound break: a "Fifth" has an oscillator seven semitones up, a "Sync"
// synchronises, and so on.
std::vector<std::string> names_that_values_break(const sound_tables& tables);

// A line for each promise that is only heard: that "Dark" sounds are darker than half of all sounds, "Detuned" ones
// beat, "Pad"s ring longer with reverb than a "Lead" may. The sounds have to be the complete set.
std::vector<std::string> names_that_figures_break(const std::vector<sound_figures>& sounds);
