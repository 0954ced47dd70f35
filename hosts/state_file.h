// MIT License. Files with an effect's state: a bank or a single program.
#pragma once

#include <string>

#include "hosts/effect_host.h"

// Restores the effect from the file, which tells by its content what it holds. A single program takes the place of the
// one in use. Throws failure for what is no state of this effect, and when the effect doesn't take it.
void load_state(const std::string& path, effect_host* host);

// Writes the effect's bank, or the program in use when `path` ends in ".fxp". Throws failure when the place cannot be
// written to, and then leaves it as it was.
void save_state(const std::string& path, const effect_host& host);
