// MIT License. The programs of an effect that has shaken hands: which is in use, what it says, and changing it.
#pragma once

#include <string>
#include <string_view>

#include "hosts/effect/effect_host.h"
#include "hosts/effect/program_image.h"
#include "hosts/effect/sounds.h"

// The program in use, as the effect's state has it now. Throws failure when it gives none.
program program_in_use(const effect_host& host);

// The sound that a program names. Throws failure when it isn't known: the effect would pass the voice on as it is.
const sound& sound_of(const program& content);

// Replaces the program in use.
//   throws   failure when the effect's state then says anything else than `wanted`
void use_program(const program& wanted, effect_host* host);

// Brings the program into use that `wanted` means: its number, its name, or a part of its name that no other has.
//   throws   failure when there is none or more than one, with the candidates, and when the effect doesn't follow
void select_program(std::string_view wanted, effect_host* host);

// The programs as a table, a line per program: a star at the one in use, number, name, sound, switches, keys.
std::string program_table(const effect_host& host);

// Restores the effect from the file, which tells by its content what it holds. A single program takes the place of the
// one in use. Throws failure for what is no state of this effect, and when the effect doesn't take it.
void load_state(const std::string& path, effect_host* host);

// Writes the effect's bank, or the program in use when `path` ends in ".fxp". Throws failure when the place cannot be
// written to, and then leaves it as it was.
void save_state(const std::string& path, const effect_host& host);
