// MIT License. The page that introduces all sounds, docs/sounds.md.
#pragma once

#include <string>

#include "tools/soundcheck/sound_tables.h"

// The page as Markdown, in lines of up to 120 columns: under each category its sounds with their algorithm, character
// and hint. Sounds without values are left out.
std::string sounds_page(const sound_tables& tables);
